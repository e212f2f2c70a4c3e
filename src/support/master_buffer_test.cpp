#include "support/binary_stream.h"
#include "support/master_buffer.h"

#include "support/allocation_probe.h"
#include "support/failures.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

using namespace Velorn;
using VelornTest::failureOf;

namespace
{

// Bytes from hexadecimal text; spaces are for reading only.
std::vector<uint8_t> hexBytes(const std::string& text)
{
	std::vector<uint8_t> bytes;
	std::string digits;
	for(const char c : text)
		if(c != ' ')
			digits += c;
	for(size_t i = 0; i + 1 < digits.size(); i += 2)
		bytes.push_back((uint8_t)std::stoul(digits.substr(i, 2), nullptr, 16));
	return bytes;
}

// The chunked form of a buffer of 2 by 1 pixels with one layer "a", pixels
// (1, 0.5, 2) and (-1, 0, 0.25), and alpha 0.5 and 1, piece by piece.
const std::string VERSION = "01000000";
const std::string LAYERS_CHUNK = "64000000 06000000 6c6179657273"  // mark 100, "layers"
								 "01000000 01000000 61"            // 1 layer, "a"
								 "01000000 02000000 01000000"      // image version, width, height
								 "0000803f 0000003f 00000040 000080bf 00000000 0000803e";
const std::string ALPHA_CHUNK = "64000000 05000000 616c706861"        // mark 100, "alpha"
								"01000000 02000000 01000000 01000000" // version, width, height, 1 channel
								"0000003f 0000803f";
const std::string END = "65000000";

MasterBuffer smallBuffer(bool with_alpha) { return MasterBuffer(2, 1, 1, 1, 1, {"a"}, with_alpha); }

void fillSmallBuffer(MasterBuffer& buffer)
{
	const float pixels[6] = {1.0f, 0.5f, 2.0f, -1.0f, 0.0f, 0.25f};
	std::memcpy(buffer.layers[0].image.getData(), pixels, sizeof(pixels));
	buffer.alpha.getData()[0] = 0.5f;
	buffer.alpha.getData()[1] = 1.0f;
}

std::vector<uint8_t> streamOf(const MasterBuffer& buffer)
{
	BufferOutStream stream;
	buffer.writeToStream(stream);
	return stream.getData();
}

// Reads bytes into buffer, which must take all of them.
void readInto(MasterBuffer& buffer, const std::vector<uint8_t>& bytes)
{
	BufferInStream stream(bytes);
	buffer.readFromStream(stream);
	EXPECT_EQ(stream.bytesRemaining(), 0u);
}

// The failure of reading bytes into a buffer of 2 by 1 pixels.
std::string readFailure(const std::vector<uint8_t>& bytes)
{
	MasterBuffer buffer = smallBuffer(true);
	return failureOf<Exception>([&] { readInto(buffer, bytes); });
}

std::string readFailure(const std::string& hex) { return readFailure(hexBytes(hex)); }

} // namespace

TEST(MasterBuffer, ConstructionAndAdding)
{
	MasterBuffer buffer(4, 3, 3, 2, 1, {"sun", "sky"}, true);
	ASSERT_EQ(buffer.layers.size(), 3u);
	EXPECT_EQ(buffer.layers[1].name, "sky");
	EXPECT_EQ(buffer.layers[2].name, "");
	EXPECT_EQ(buffer.layers[2].image.getWidth(), 4u);
	EXPECT_EQ(buffer.layers[2].image.getHeight(), 3u);
	EXPECT_EQ(buffer.alpha.getNumComponents(), 1u);
	EXPECT_EQ(buffer.alpha.getHeight(), 3u);
	EXPECT_TRUE(MasterBuffer(4, 3, 1, 2, 1, {}, false).alpha.isEmpty());

	MasterBuffer sum = smallBuffer(true);
	fillSmallBuffer(sum);
	MasterBuffer other = smallBuffer(true);
	fillSmallBuffer(other);
	sum.addBuffer(other);
	EXPECT_EQ(sum.layers[0].image.getData()[3], -2.0f);
	EXPECT_EQ(sum.alpha.getData()[1], 2.0f);

	EXPECT_EQ(failureOf([&] { sum.addBuffer(MasterBuffer(2, 1, 2, 1, 1, {}, true)); }), "Num layers differs");
	EXPECT_EQ(failureOf([&] { sum.addBuffer(MasterBuffer(3, 1, 1, 1, 1, {}, true)); }), "Dimensions not the same");
	MasterBuffer no_alpha = smallBuffer(false);
	no_alpha.layers[0].image.getData()[0] = 1.0f;
	EXPECT_EQ(failureOf([&] { sum.addBuffer(no_alpha); }), "Alpha channel presence differs");
	EXPECT_EQ(sum.layers[0].image.getData()[0], 3.0f) << "the layers are added before alpha is checked";
	EXPECT_EQ(failureOf([&] { smallBuffer(false).addBuffer(sum); }), "Alpha channel presence differs");
	MasterBuffer other_alpha = smallBuffer(true);
	other_alpha.alpha.resize(1, 2, 1);
	EXPECT_EQ(failureOf([&] { sum.addBuffer(other_alpha); }), "Alpha channel dimensions differ");
}

TEST(MasterBuffer, WritesTheChunkedForm)
{
	MasterBuffer buffer = smallBuffer(true);
	fillSmallBuffer(buffer);
	EXPECT_EQ(streamOf(buffer), hexBytes(VERSION + LAYERS_CHUNK + ALPHA_CHUNK + END));
	buffer.alpha = ImageMapFloat();
	EXPECT_EQ(streamOf(buffer), hexBytes(VERSION + LAYERS_CHUNK + END));
}

TEST(MasterBuffer, ReadsTheChunkedFormBack)
{
	const std::vector<uint8_t> bytes = hexBytes(VERSION + LAYERS_CHUNK + ALPHA_CHUNK + END);
	// The writer is pinned byte for byte above, so writing the buffer read
	// back shows every field that the reader took.
	MasterBuffer read(2, 1, 3, 1, 1, {}, false);
	readInto(read, bytes);
	EXPECT_EQ(streamOf(read), bytes);

	// A stream without alpha leaves alpha empty, even in a buffer that had it.
	MasterBuffer had_alpha = smallBuffer(true);
	readInto(had_alpha, hexBytes(VERSION + LAYERS_CHUNK + END));
	EXPECT_TRUE(had_alpha.alpha.isEmpty());

	// A larger buffer with several named layers survives the trip.
	MasterBuffer big(5, 3, 3, 1, 1, {"sun", "", "sky lights"}, true);
	for(size_t i = 0; i < 3; ++i)
		for(size_t j = 0; j < 45; ++j)
			big.layers[i].image.getData()[j] = (float)(i * 100 + j) * 0.37f;
	for(size_t j = 0; j < 15; ++j)
		big.alpha.getData()[j] = (float)j / 15;
	const std::vector<uint8_t> big_bytes = streamOf(big);
	MasterBuffer big_read(5, 3, 1, 1, 1, {}, false);
	readInto(big_read, big_bytes);
	EXPECT_EQ(streamOf(big_read), big_bytes);
}

TEST(MasterBuffer, BadStreamsFailWithTheirMessages)
{
	// Marks and names.
	EXPECT_EQ(readFailure(VERSION + "64000000 04000000 62657461" + END), "Unknown channel name 'beta'");
	EXPECT_EQ(readFailure(VERSION + LAYERS_CHUNK + "07000000"), "Unknown chunk type '7'");
	EXPECT_EQ(readFailure(VERSION + "ffffffff"), "Unknown chunk type '-1'");
	// Versions at all three levels.
	EXPECT_EQ(readFailure("02000000" + LAYERS_CHUNK + END), "Unknown version 2, expected 1.");
	std::string layer_version_2 = LAYERS_CHUNK;
	layer_version_2.replace(layer_version_2.find("01000000 02000000 01000000"), 8, "02000000");
	EXPECT_EQ(readFailure(VERSION + layer_version_2 + END), "Unknown version 2, expected 1.");
	std::string alpha_version_0 = ALPHA_CHUNK;
	alpha_version_0.replace(alpha_version_0.find("01000000 02000000"), 8, "00000000");
	EXPECT_EQ(readFailure(VERSION + LAYERS_CHUNK + alpha_version_0 + END), "Unknown version 0, expected 1.");
	// Sizes that do not match the buffer.
	MasterBuffer wider(3, 1, 1, 1, 1, {}, false);
	EXPECT_EQ(failureOf([&] { readInto(wider, hexBytes(VERSION + LAYERS_CHUNK + END)); }),
		"Layer size 2 x 1 does not match the buffer size 3 x 1.");
	EXPECT_EQ(readFailure(VERSION + "64000000 05000000 616c706861 01000000 02000000 01000000 02000000"
								"00000000 00000000 00000000 00000000" + END),
		"Alpha channel size 2 x 1 x 2 does not match the buffer size 2 x 1 x 1.");
}

TEST(MasterBuffer, ShortStreamsFailBeforeAllocating)
{
	// Every cut of a whole stream fails, at the place where it ends.
	const std::vector<uint8_t> whole = hexBytes(VERSION + LAYERS_CHUNK + ALPHA_CHUNK + END);
	for(size_t length = 0; length < whole.size(); ++length)
		EXPECT_NE(readFailure(std::vector<uint8_t>(whole.begin(), whole.begin() + length)), "(no failure)") << length;
	EXPECT_EQ(readFailure(VERSION + LAYERS_CHUNK + ALPHA_CHUNK), "Read past end of stream.");
	EXPECT_EQ(readFailure(VERSION + "64000000 06000000 6c6179"), "String length 6 is larger than the rest of the stream.");
	EXPECT_EQ(readFailure(VERSION + LAYERS_CHUNK.substr(0, LAYERS_CHUNK.size() - 8)),
		"Image size 2 x 1 is larger than the rest of the stream.");

	// Counts that promise more than the stream holds allocate nothing for it.
	const std::string layers = VERSION + "64000000 06000000 6c6179657273";
	const std::pair<std::string, std::string> cases[] = {
		{layers + "e9030000", "Too many layers."},
		{layers + "e8030000 01000000 61 01000000" + END,
			"Layer count 1000 is larger than the rest of the stream."},
		{layers + "01000000 f0ffffff 00000000 00000000 00000000 00000000", "String length 4294967280 is larger than the rest of the stream."},
		{layers + "01000000 01000000 61 01000000 a0860100 a0860100 00000000",
			"Image size 100000 x 100000 is larger than the rest of the stream."},
		{VERSION + "64000000 05000000 616c706861 01000000 00000100 00000100 00000100 00000000",
			"Image map size 65536 x 65536 x 65536 is larger than the rest of the stream."},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.second);
		MasterBuffer buffer = smallBuffer(false);
		const std::vector<uint8_t> bytes = hexBytes(c.first);
		VelornTest::resetLargestAllocation();
		EXPECT_EQ(failureOf([&] { readInto(buffer, bytes); }), c.second);
		EXPECT_LT(VelornTest::largestAllocation(), 256u);
	}
}
