#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

// Byte streams for the chunked binary form of float pictures and render
// buffers. Integers are 32-bit little endian; a string is its byte length as
// an unsigned integer, then its bytes; bulk data goes as it is in memory.
// Reading failures throw Exception.
namespace Velorn
{

class OutStream
{
public:
	virtual ~OutStream() = default;

	virtual void writeData(const void* data, size_t num_bytes) = 0;

	void writeInt32(int32_t value);
	void writeUInt32(uint32_t value);
	void writeString(const std::string& text);
};

class InStream
{
public:
	virtual ~InStream() = default;

	// Throws "Read past end of stream." when fewer bytes are left.
	virtual void readData(void* buffer, size_t num_bytes) = 0;
	virtual uint64_t bytesRemaining() const = 0;

	int32_t readInt32();
	uint32_t readUInt32();
	std::string readString();
};

// The version that every level of the chunked form starts with.
const int32_t CHUNKED_FORM_VERSION = 1;

// Reads a version and throws "Unknown version " + version + ", expected 1."
// unless it is CHUNKED_FORM_VERSION.
void readChunkedFormVersion(InStream& stream);

// Throws what + " is larger than the rest of the stream." unless the product
// of the factors fits into the bytes that remain. Readers check a size or
// count this way before they allocate for it.
void checkStreamHolds(const InStream& stream, std::initializer_list<uint64_t> factors, const std::string& what);

// Collects what is written in memory.
class BufferOutStream : public OutStream
{
public:
	void writeData(const void* data, size_t num_bytes) override;

	const std::vector<uint8_t>& getData() const { return bytes; }

private:
	std::vector<uint8_t> bytes;
};

// Reads bytes that the caller keeps alive, such as a mapped file.
class BufferInStream : public InStream
{
public:
	BufferInStream(const void* data_, size_t size_) : data(static_cast<const uint8_t*>(data_)), size(size_) {}
	explicit BufferInStream(const std::vector<uint8_t>& bytes) : BufferInStream(bytes.data(), bytes.size()) {}

	void readData(void* buffer, size_t num_bytes) override;
	uint64_t bytesRemaining() const override { return size - position; }

private:
	const uint8_t* data;
	size_t size;
	size_t position = 0;
};

} // namespace Velorn
