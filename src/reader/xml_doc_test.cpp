#include "reader/xml_doc.h"

#include "support/failures.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

using namespace Velorn;

TEST(VelornXMLDoc, ReadsFilesWithSingleLineEndsAndNamesWhatFails)
{
	VelornTest::TempDir dir;
	VelornTest::writeFile(dir.file("a.xml"), "<a>\r\n\t<b>x\ry</b>\r\n</a>\r\n");
	VelornXMLDoc doc(dir.file("a.xml"));
	const TiXmlElement* b = doc.getRootElement("a")->FirstChildElement("b");
	ASSERT_NE(b, nullptr);
	EXPECT_STREQ(b->GetText(), "x\ny");
	EXPECT_EQ(b->Row(), 2);

	const std::string missing = dir.file("missing.xml");
	EXPECT_EQ(VelornTest::failureOf([&] { VelornXMLDoc absent(missing); }),
		"Failed to open XML doc from path '" + missing + "': No such file or directory (error code=2)");
	EXPECT_EQ(VelornTest::failureOf([&] { doc.getRootElement("c"); }),
		"Could not find root 'c' element in file '" + dir.file("a.xml") + "'.");
}
