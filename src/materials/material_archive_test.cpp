#include "materials/material_archive.h"

#include "materials/archive_test_helpers.h"
#include "support/platform.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

TEST(MaterialArchive, EntryNamesThatLeaveTheFolderAreRefused)
{
	const struct
	{
		const char* name;
		const char* reason;
	} cases[] = {
		{"mat.vlm", ""},
		{"tex/a b.png", ""},
		{"tex/", ""},
		{"./mat.vlm", ""},
		{"", "an empty name"},
		{"/etc/mat.vlm", "an absolute path"},
		{"tex\\..\\mat.vlm", "a backslash"},
		{"C:mat.vlm", "a drive letter or colon"},
		{"../mat.vlm", "a \"..\" part"},
		{"tex/../../mat.vlm", "a \"..\" part"},
		{"tex/..", "a \"..\" part"},
		{"tex//mat.vlm", "an empty part"},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		EXPECT_EQ(unsafeEntryReason(c.name), c.reason);
	}
}

// An entry whose data fails to unpack removes what was written before it.
TEST(MaterialArchive, DamagedEntryLeavesNothing)
{
	VelornTest::TempDir dir;
	const std::string archive = dir.file("damaged.pvlm");
	writeZip(archive, {{"a.vlm", std::string(4000, 'a')}, {"b.png", std::string(4000, 'b')}});
	// The second entry's compressed data is the last run before the
	// central directory; spoiling it breaks its checksum.
	std::string bytes = VelornTest::readFile(archive);
	const size_t central = bytes.find("PK\x01\x02");
	ASSERT_NE(central, std::string::npos);
	bytes[central - 5] ^= 0x55;
	VelornTest::writeFile(archive, bytes);

	const std::string folder = dir.file("out");
	const ArchiveUnpack result = unpackMaterialArchive(archive, folder);
	EXPECT_FALSE(result.ok);
	EXPECT_NE(result.message.find("is damaged (entry 'b.png': "), std::string::npos) << result.message;
	EXPECT_FALSE(Velorn::Platform::pathExists(folder));
}
