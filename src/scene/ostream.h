#pragma once

#include "support/velorn_string.h"

#include <fstream>
#include <string>

namespace Velorn
{

// The sink of scene text. Writers call it once per small piece.
class OStream
{
public:
	virtual ~OStream() = default;
	// Appends the bytes of s; an empty string does nothing.
	virtual void write(const String& s) = 0;
	// Appends a number in the stream's own format.
	virtual void write(double d) = 0;
};

// Writes to a file, replacing what was there. Numbers given to write(double)
// take the standard stream's format (six significant digits) in the classic
// locale, whatever the process locale is.
class OFStream : public OStream
{
public:
	// Throws VelornException if the file cannot be opened.
	explicit OFStream(const std::string& path);

	void write(const String& s) override;
	void write(double d) override;

	// Flushes and throws VelornException if any write has failed.
	void close();

private:
	std::string path;
	std::ofstream file;
};

// Collects the text in memory. Numbers given to write(double) take the
// shortest scene number form.
class BufferOStream : public OStream
{
public:
	void write(const String& s) override;
	void write(double d) override;

	const String& getBuffer() const { return buffer; }
	std::string str() const { return buffer.str(); }

private:
	String buffer;
};

} // namespace Velorn
