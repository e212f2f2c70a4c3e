#include "reader/xml_doc.h"

#include "support/failures.h"
#include "support/platform_utils.h"
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
#ifdef _WIN32
	// Windows words the text by its language.
	const std::string not_found = PlatformUtils::getErrorString(2);
#else
	const std::string not_found = "No such file or directory (error code=2)";
#endif
	EXPECT_EQ(VelornTest::failureOf([&] { VelornXMLDoc absent(missing); }),
		"Failed to open XML doc from path '" + missing + "': " + not_found);
	EXPECT_EQ(VelornTest::failureOf([&] { doc.getRootElement("c"); }),
		"Could not find root 'c' element in file '" + dir.file("a.xml") + "'.");
}
