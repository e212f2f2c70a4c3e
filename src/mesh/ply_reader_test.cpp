#include "mesh/ply_reader.h"

#include "mesh/ply_test_helpers.h"
#include "support/platform.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

using namespace Velorn;
using VelornTest::PlyTestElement;
using VelornTest::PlyTestFile;

namespace
{

std::string eventText(const std::string& element, uint64_t instance, const std::string& property, int64_t index, double value)
{
	char text[256];
	std::snprintf(text, sizeof(text), "%s[%llu].%s[%lld]=%.17g", element.c_str(), (unsigned long long)instance,
		property.c_str(), (long long)index, value);
	return text;
}

// Every value the reader hands out, as text.
bool recordValue(const PlyArgument& argument)
{
	static_cast<std::vector<std::string>*>(argument.user_data)
		->push_back(eventText(argument.element->name, argument.instance_index, argument.property->name,
			argument.value_index, argument.value));
	return true;
}

bool stopReading(const PlyArgument&) { return false; }

// The values a description holds, in file order, as recordValue writes them.
std::vector<std::string> expectedEvents(const std::vector<PlyTestElement>& elements)
{
	std::vector<std::string> events;
	for(const PlyTestElement& e : elements)
		for(size_t i = 0; i < e.instances.size(); ++i)
			for(size_t p = 0; p < e.properties.size(); ++p)
			{
				const std::vector<double>& values = e.instances[i][p];
				if(!e.properties[p].count_type.empty())
					events.push_back(eventText(e.name, i, e.properties[p].name, -1, (double)values.size()));
				for(size_t j = 0; j < values.size(); ++j)
					events.push_back(eventText(e.name, i, e.properties[p].name, (int64_t)j, values[j]));
			}
	return events;
}

// Reads bytes with a recording callback on every property.
std::vector<std::string> readAll(const std::string& bytes, const std::vector<PlyTestElement>& elements)
{
	std::vector<std::string> events;
	PlyReader reader;
	reader.openMemory(bytes.data(), bytes.size());
	EXPECT_TRUE(reader.readHeader()) << reader.error();
	for(const PlyTestElement& e : elements)
		for(const VelornTest::PlyTestProperty& p : e.properties)
			EXPECT_EQ(reader.setReadCallback(e.name, p.name, recordValue, &events, 0), e.instances.size());
	EXPECT_TRUE(reader.readBody()) << reader.error();
	return events;
}

const std::vector<PlyTestElement> ALL_TYPES = {
	{"scalars",
		{{"char", "a"}, {"int8", "b"}, {"uchar", "c"}, {"uint8", "d"}, {"short", "e"}, {"int16", "f"}, {"ushort", "g"},
			{"uint16", "h"}, {"int", "i"}, {"int32", "j"}, {"uint", "k"}, {"uint32", "l"}, {"float", "m"},
			{"float32", "n"}, {"double", "o"}, {"float64", "p"}},
		{{{-128}, {127}, {0}, {255}, {-32768}, {32767}, {0}, {65535}, {-2147483648.0}, {2147483647}, {0},
			 {4294967295.0}, {(double)0.1f}, {(double)-3.4028235e38f}, {0.1}, {-1.7976931348623157e308}},
			{{-1}, {1}, {1}, {2}, {-2}, {3}, {4}, {5}, {-6}, {7}, {8}, {9}, {(double)1e-45f}, {-0.0}, {1e-300}, {2.5}}}},
	{"lists",
		{{"int", "by_char", "char"}, {"double", "by_uchar", "uchar"}, {"float", "by_short", "short"},
			{"short", "by_ushort", "ushort"}, {"uchar", "by_int", "int"}, {"uint", "by_uint", "uint"},
			{"char", "by_int8", "int8"}, {"ushort", "by_uint16", "uint16"}},
		{{{1, 2, 3}, {0.25}, {}, {-5, 5}, {255, 0}, {4294967295.0}, {-1}, {7, 8, 9, 10}},
			{{}, {}, {1.5f, 2.5f}, {}, {}, {}, {}, {}}}},
	{"empty", {{"float", "x"}}, {}},
};

} // namespace

TEST(PlyReader, EveryTypeReadsAlikeInAllThreeEncodings)
{
	const PlyTestFile file(ALL_TYPES);
	const std::vector<std::string> expected = expectedEvents(ALL_TYPES);
	ASSERT_EQ(expected.size(), 64u);
	const std::pair<const char*, std::string> encodings[] = {
		{"ascii", file.ascii()}, {"binary little endian", file.binary(false)}, {"binary big endian", file.binary(true)}};
	for(const auto& encoding : encodings)
	{
		SCOPED_TRACE(encoding.first);
		EXPECT_EQ(readAll(encoding.second, ALL_TYPES), expected);
	}
}

TEST(PlyReader, HeaderDetails)
{
	const std::string text = "ply\r\nformat binary_big_endian 1.0\r\ncomment x\r\nobj_info y\r\n"
							 "element vertex 2\r\nproperty float x\r\nproperty list uchar int idx\r\n"
							 "element face 0\r\nend_header\r\n" +
		std::string(2 * 5, '\0');
	PlyReader reader;
	reader.openMemory(text.data(), text.size());
	ASSERT_TRUE(reader.readHeader()) << reader.error();
	EXPECT_EQ(reader.storage(), PlyStorage::BinaryBigEndian);
	EXPECT_EQ(reader.elements().size(), 2u);
	EXPECT_EQ(reader.setReadCallback("vertex", "idx", recordValue, nullptr, 0), 2u);
	EXPECT_EQ(reader.setReadCallback("vertex", "y", recordValue, nullptr, 0), 0u);
	EXPECT_EQ(reader.setReadCallback("edge", "x", recordValue, nullptr, 0), 0u);
	EXPECT_EQ(reader.setReadCallback("face", "x", recordValue, nullptr, 0), 0u);
	// A list of 0 entries reports its length only.
	std::vector<std::string> events;
	reader.setReadCallback("vertex", "idx", recordValue, &events, 0);
	EXPECT_TRUE(reader.readBody()) << reader.error();
	EXPECT_EQ(events, (std::vector<std::string>{"vertex[0].idx[-1]=0", "vertex[1].idx[-1]=0"}));
}

TEST(PlyReader, BadHeadersFailWithTheirReason)
{
	struct Case
	{
		std::string text;
		std::string error;
	};
	const std::string start = "ply\nformat ascii 1.0\n";
	const Case cases[] = {
		{"", "not a PLY file: the first line is not 'ply'"},
		{"ply format ascii 1.0\n", "not a PLY file: the first line is not 'ply'"},
		{"ply\n", "the header has no 'end_header' line"},
		{"ply\nend_header\n", "the header has no 'format' line"},
		{"ply\nformat ascii 2.0\n", "unsupported version '2.0' (line 2)"},
		{"ply\nformat binary_middle_endian 1.0\n", "unknown format 'binary_middle_endian' (line 2)"},
		{start + "format ascii 1.0\n", "'format' must come once, before the elements (line 3)"},
		{"ply\nelement v 1\nformat ascii 1.0\n", "'format' must come once, before the elements (line 3)"},
		{start + "Created by a tool\nend_header\n", "unknown header line 'Created' (line 3)"},
		{start + "property float x\n", "a property before any element (line 3)"},
		{start + "element vertex -1\n", "an element needs a name and a count (line 3)"},
		{start + "element vertex 1x\n", "an element needs a name and a count (line 3)"},
		{start + "element vertex 999999999999999999999999\n", "count of element 'vertex' out of range (line 3)"},
		{start + "element vertex 1\nproperty float16 x\n", "unknown property type 'float16' (line 4)"},
		{start + "element vertex 1\nproperty list float int x\n", "bad list length type 'float' (line 4)"},
		{start + "element vertex 1\nproperty list uchar x\n", "unknown property type 'x' (line 4)"},
		{start + "element vertex 1\nproperty float\n", "a property needs a name (line 4)"},
		{start + "end_header junk\n", "unexpected text after 'end_header'"},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.text);
		PlyReader reader;
		reader.openMemory(c.text.data(), c.text.size());
		EXPECT_FALSE(reader.readHeader());
		EXPECT_EQ(reader.error(), c.error);
		EXPECT_FALSE(reader.readBody());
		EXPECT_EQ(reader.error(), "the header has not been read");
	}
}

TEST(PlyReader, BadBodiesFailWithTheirPlace)
{
	struct Case
	{
		const char* what;
		std::string text;
		std::string error;
	};
	const std::string vertex = "element vertex 2\nproperty float x\nproperty uchar y\n";
	const std::string ascii = "ply\nformat ascii 1.0\n" + vertex;
	const std::string face = "element face 1\nproperty list uint int i\nend_header\n";
	const std::string binary = "ply\nformat binary_little_endian 1.0\nelement face 1\nproperty list uchar int i\nend_header\n";
	const Case cases[] = {
		// Counts beyond what the body can hold fail before any value is read.
		{"a count beyond the text", "ply\nformat ascii 1.0\nelement vertex 1000000000000\nproperty float x\nend_header\n1 2 3",
			"element 'vertex' claims 1000000000000 instances, more than the body of 5 bytes can hold"},
		{"a count beyond the binary", "ply\nformat binary_little_endian 1.0\nelement vertex 2\nproperty float x\nproperty float y\n"
			"end_header\n" + std::string(15, '\0'),
			"element 'vertex' claims 2 instances, more than the body of 15 bytes can hold"},
		{"counts beyond the binary together", "ply\nformat binary_big_endian 1.0\nelement a 1\nproperty double x\nelement b 1\n"
			"property list uint int y\nend_header\n" + std::string(11, '\0'),
			"element 'b' claims 1 instances, more than the body of 11 bytes can hold"},
		{"not a number", ascii + "end_header\n1 2\nx 3\n", "bad or missing value in property 'x' of element 'vertex', instance 1"},
		{"a fraction for an integer", ascii + "end_header\n1 2.5\n1 3\n",
			"bad or missing value in property 'y' of element 'vertex', instance 0"},
		{"out of the type's range", ascii + "end_header\n1 256\n1 3\n",
			"bad or missing value in property 'y' of element 'vertex', instance 0"},
		{"too few values", ascii + "end_header\n1 2 3\n", "bad or missing value in property 'y' of element 'vertex', instance 1"},
		{"negative list length", "ply\nformat ascii 1.0\nelement face 1\nproperty list char int i\nend_header\n-1 0 0 0\n",
			"bad or missing list length in property 'i' of element 'face', instance 0"},
		{"a huge list in text", "ply\nformat ascii 1.0\n" + face + "4000000000 1 2 3\n",
			"a list of 4000000000 entries runs past the end of the data in property 'i' of element 'face', instance 0"},
		{"a list entry missing in text", "ply\nformat ascii 1.0\n" + face + "3 1 2\n",
			"bad or missing list entry in property 'i' of element 'face', instance 0"},
		{"a truncated binary list", binary + std::string("\x03\x01\0\0\0\x02\0\0\0", 9),
			"a list of 3 entries runs past the end of the data in property 'i' of element 'face', instance 0"},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.what);
		std::vector<std::string> events;
		PlyReader reader;
		reader.openMemory(c.text.data(), c.text.size());
		ASSERT_TRUE(reader.readHeader()) << reader.error();
		reader.setReadCallback("vertex", "x", recordValue, &events, 0);
		reader.setReadCallback("face", "i", recordValue, &events, 0);
		EXPECT_FALSE(reader.readBody());
		EXPECT_EQ(reader.error(), c.error);
		// A property without a callback is checked all the same.
		PlyReader unwatched;
		unwatched.openMemory(c.text.data(), c.text.size());
		ASSERT_TRUE(unwatched.readHeader());
		EXPECT_FALSE(unwatched.readBody());
		EXPECT_EQ(unwatched.error(), c.error);
	}
}

TEST(PlyReader, CallbackStopsTheRead)
{
	const std::string text = "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nend_header\n1\n";
	PlyReader reader;
	reader.openMemory(text.data(), text.size());
	ASSERT_TRUE(reader.readHeader());
	reader.setReadCallback("vertex", "x", stopReading, nullptr, 0);
	EXPECT_FALSE(reader.readBody());
	EXPECT_EQ(reader.error(), "stopped by the read callback in property 'x' of element 'vertex', instance 0");
}

TEST(PlyReader, ElementsWithoutPropertiesCostNothing)
{
	// Nothing is read for such an element however many instances it claims,
	// so this finishes at once.
	const std::string text =
		"ply\nformat binary_little_endian 1.0\nelement nothing 18446744073709551614\nelement vertex 1\nproperty uchar x\n"
		"end_header\n\x07";
	std::vector<std::string> events;
	PlyReader reader;
	reader.openMemory(text.data(), text.size());
	ASSERT_TRUE(reader.readHeader()) << reader.error();
	reader.setReadCallback("vertex", "x", recordValue, &events, 0);
	EXPECT_TRUE(reader.readBody()) << reader.error();
	EXPECT_EQ(events, std::vector<std::string>{"vertex[0].x[0]=7"});
}

TEST(PlyReader, OpensFilesAndCloses)
{
	VelornTest::TempDir dir;
	const std::string path = dir.file("one.ply");
	VelornTest::writeFile(path, "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nend_header\n2.5\n");
	std::vector<std::string> events;
	PlyReader reader;
	ASSERT_TRUE(reader.open(path)) << reader.error();
	ASSERT_TRUE(reader.readHeader());
	reader.setReadCallback("vertex", "x", recordValue, &events, 0);
	ASSERT_TRUE(reader.readBody());
	EXPECT_EQ(events, std::vector<std::string>{"vertex[0].x[0]=2.5"});
	reader.close();
	EXPECT_TRUE(reader.elements().empty());
	EXPECT_FALSE(reader.readHeader());

	const std::string missing = dir.file("missing.ply");
	EXPECT_FALSE(reader.open(missing));
	EXPECT_EQ(reader.error(), "CreateFile failed for path '" + missing + "': " + Platform::errorString(2));
}

TEST(PlyReader, NoCountToReserveByWhenTheDataFallsShort)
{
	const std::string text =
		"ply\nformat binary_little_endian 1.0\nelement vertex 5\nproperty float x\nend_header\n" + std::string(16, '\0');
	PlyReader reader;
	reader.openMemory(text.data(), text.size());
	ASSERT_TRUE(reader.readHeader());
	EXPECT_EQ(reader.setReadCallback("vertex", "x", recordValue, nullptr, 0), 0u);
	EXPECT_FALSE(reader.readBody());
	EXPECT_EQ(reader.error(), "element 'vertex' claims 5 instances, more than the body of 16 bytes can hold");
}
