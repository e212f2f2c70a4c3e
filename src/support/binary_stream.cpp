#include "support/binary_stream.h"

#include "support/exceptions.h"

#include <cstring>

namespace Velorn
{

void OutStream::writeInt32(int32_t value) { writeUInt32((uint32_t)value); }

void OutStream::writeUInt32(uint32_t value)
{
	const uint8_t bytes[4] = {(uint8_t)value, (uint8_t)(value >> 8), (uint8_t)(value >> 16), (uint8_t)(value >> 24)};
	writeData(bytes, 4);
}

void OutStream::writeString(const std::string& text)
{
	writeUInt32((uint32_t)text.size());
	writeData(text.data(), text.size());
}

int32_t InStream::readInt32() { return (int32_t)readUInt32(); }

uint32_t InStream::readUInt32()
{
	uint8_t bytes[4];
	readData(bytes, 4);
	return (uint32_t)bytes[0] | (uint32_t)bytes[1] << 8 | (uint32_t)bytes[2] << 16 | (uint32_t)bytes[3] << 24;
}

std::string InStream::readString()
{
	const uint32_t length = readUInt32();
	checkStreamHolds(*this, {length}, "String length " + std::to_string(length));
	std::string text(length, '\0');
	readData(&text[0], length);
	return text;
}

void readChunkedFormVersion(InStream& stream)
{
	const int32_t version = stream.readInt32();
	if(version != CHUNKED_FORM_VERSION)
		throw Exception("Unknown version " + std::to_string(version) + ", expected " +
			std::to_string(CHUNKED_FORM_VERSION) + ".");
}

void checkStreamHolds(const InStream& stream, std::initializer_list<uint64_t> factors, const std::string& what)
{
	for(const uint64_t factor : factors)
		if(factor == 0)
			return;
	// Each step is checked by division, so that sizes read from a bad stream
	// cannot overflow the product.
	const uint64_t remaining = stream.bytesRemaining();
	uint64_t product = 1;
	for(const uint64_t factor : factors)
	{
		if(product > remaining / factor)
			throw Exception(what + " is larger than the rest of the stream.");
		product *= factor;
	}
}

void BufferOutStream::writeData(const void* data, size_t num_bytes)
{
	const uint8_t* begin = static_cast<const uint8_t*>(data);
	bytes.insert(bytes.end(), begin, begin + num_bytes);
}

void BufferInStream::readData(void* buffer, size_t num_bytes)
{
	if(num_bytes > size - position)
		throw Exception("Read past end of stream.");
	if(num_bytes != 0)
		std::memcpy(buffer, data + position, num_bytes);
	position += num_bytes;
}

} // namespace Velorn
