#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
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

std::string replacedAll(std::string text, const std::string& from, const std::string& to)
{
	EXPECT_NE(text.find(from), std::string::npos) << "\"" << from << "\" does not occur";
	for(size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
		text.replace(at, from.size(), to);
	return text;
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

std::string goldenFile(const std::string& name) { return readFile(testDataPath("golden/" + name)); }

void expectMatchesGolden(const std::string& actual, const std::string& name)
{
	const std::string expected = goldenFile(name);
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
	// mkdtemp's way, by hand, as Windows has no mkdtemp: a random name, made
	// only if no other directory has it.
	std::random_device random;
	for(int attempt = 0; attempt < 100; ++attempt)
	{
		char name[32];
		std::snprintf(name, sizeof(name), "velorn_test_%08x", (unsigned)random());
		const std::filesystem::path path = std::filesystem::temp_directory_path() / name;
		std::error_code error;
		if(std::filesystem::create_directory(path, error))
		{
			dir = path.string();
			return;
		}
	}
	throw std::runtime_error("cannot make a temporary directory");
}

std::string TempDir::file(const std::string& name) const
{
	std::string path = dir + '/' + name;
	std::replace(path.begin(), path.end(), '/', (char)std::filesystem::path::preferred_separator);
	return path;
}

TempDir::~TempDir()
{
	std::error_code ignored;
	std::filesystem::remove_all(dir, ignored);
}

} // namespace VelornTest
