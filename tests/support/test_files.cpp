#include "support/test_files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace VelornTest
{

std::string readFile(const std::string& path)
{
	std::ifstream in(path, std::ios::binary);
	EXPECT_TRUE(in.good()) << "cannot read " << path;
	std::ostringstream content;
	content << in.rdbuf();
	return content.str();
}

void writeFile(const std::string& path, const std::string& bytes)
{
	std::ofstream out(path, std::ios::binary | std::ios::trunc);
	out.write(bytes.data(), (std::streamsize)bytes.size());
	ASSERT_TRUE(out.good()) << "cannot write " << path;
}

std::string testDataPath(const std::string& relative) { return std::string(VELORN_TEST_DATA_DIR) + "/" + relative; }

namespace
{

std::string lineAt(const std::string& text, size_t line_start)
{
	const size_t end = text.find('\n', line_start);
	return text.substr(line_start, end == std::string::npos ? std::string::npos : end - line_start);
}

} // namespace

void expectMatchesGolden(const std::string& actual, const std::string& name)
{
	const std::string expected = readFile(testDataPath("golden/" + name));
	if(actual == expected)
		return;
	size_t i = 0;
	size_t line = 1, line_start = 0;
	while(i < actual.size() && i < expected.size() && actual[i] == expected[i])
	{
		if(actual[i] == '\n')
		{
			++line;
			line_start = i + 1;
		}
		++i;
	}
	ADD_FAILURE() << "output differs from golden/" << name << " at line " << line << "\n  expected: \""
				  << lineAt(expected, line_start) << "\"\n  actual:   \"" << lineAt(actual, line_start) << "\"\n--- whole output ---\n"
				  << actual;
}

TempDir::TempDir()
{
	std::string pattern = (std::filesystem::temp_directory_path() / "velorn_test_XXXXXX").string();
	const char* made = mkdtemp(pattern.data());
	if(!made)
		throw std::runtime_error("cannot make a temporary directory");
	dir = made;
}

TempDir::~TempDir()
{
	std::error_code ignored;
	std::filesystem::remove_all(dir, ignored);
}

} // namespace VelornTest
