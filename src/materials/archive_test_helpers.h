#pragma once

#include <gtest/gtest.h>
#include <zip.h>

#include <string>
#include <utility>
#include <vector>

// A ZIP archive of the entries (name, bytes) at path.
inline void writeZip(const std::string& path, const std::vector<std::pair<std::string, std::string>>& entries)
{
	int error = 0;
	zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
	ASSERT_NE(archive, nullptr);
	for(const auto& entry : entries)
	{
		zip_source_t* source = zip_source_buffer(archive, entry.second.data(), entry.second.size(), 0);
		ASSERT_NE(source, nullptr);
		ASSERT_GE(zip_file_add(archive, entry.first.c_str(), source, ZIP_FL_ENC_UTF_8), 0);
	}
	ASSERT_EQ(zip_close(archive), 0);
}
