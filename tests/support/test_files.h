#pragma once

#include <string>

namespace VelornTest
{

// The whole content of a file, bytes as they are. Fails the test if the file
// cannot be read.
std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& bytes);

// text with every occurrence of from replaced by to. Fails the test when
// from does not occur, so that an expectation built from it cannot pass by
// leaving the text as it was.
std::string replacedAll(std::string text, const std::string& from, const std::string& to);

// Path of a file under tests/, independent of the working directory.
std::string testDataPath(const std::string& relative);

// The content of the golden file tests/golden/<name>.
std::string goldenFile(const std::string& name);

// Compares text with the golden file tests/golden/<name> byte for byte and
// reports the first line that differs.
void expectMatchesGolden(const std::string& actual, const std::string& name);

// A fresh directory under the system's temporary directory, removed with its
// content when the object goes.
class TempDir
{
public:
	TempDir();
	~TempDir();
	TempDir(const TempDir&) = delete;
	TempDir& operator=(const TempDir&) = delete;

	const std::string& path() const { return dir; }
	// The name joined to the directory with the system's separator, as the
	// library joins a directory and a name. A relative name with '/' between
	// its parts gets the system's separator there too.
	std::string file(const std::string& name) const;

private:
	std::string dir;
};

} // namespace VelornTest
