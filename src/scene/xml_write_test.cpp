#include "scene/xml_write.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Velorn;
using namespace Velorn::XMLWrite;

namespace
{

template <class F>
std::string written(F write)
{
	BufferOStream stream;
	write(stream);
	return stream.str();
}

} // namespace

TEST(XMLWrite, ElementHelpers)
{
	EXPECT_EQ(written([](OStream& s) { writeOpenTag(s, 2, "a"); }), "\t\t<a>\n");
	EXPECT_EQ(written([](OStream& s) { writeCloseTag(s, 1, "a"); }), "\t</a>\n");
	EXPECT_EQ(written([](OStream& s) { writeEmptyTag(s, 0, "circular"); }), "<circular/>\n");
	EXPECT_EQ(written([](OStream& s) { writeDouble(s, 1, "d", 0.5); }), "\t<d>0.5</d>\n");
	EXPECT_EQ(written([](OStream& s) { writeDouble(s, 0, "d", -0.0); }), "<d>0</d>\n");
	EXPECT_EQ(written([](OStream& s) { writeDouble(s, 0, "d", 1e21); }), "<d>1e21</d>\n");
	EXPECT_EQ(written([](OStream& s) { writeDouble(s, 0, "d", std::numeric_limits<double>::infinity()); }), "<d>Inf</d>\n");
	EXPECT_EQ(written([](OStream& s) { writeInt(s, 0, "i", (int32_t)0x80000000u); }), "<i>-2147483648</i>\n");
	EXPECT_EQ(written([](OStream& s) { writeUID(s, 0, "uid", UID(4294967294u)); }), "<uid>4294967294</uid>\n");
	EXPECT_EQ(written([](OStream& s) { writeUID(s, 0, "uid", UID()); }), "<uid>4294967295</uid>\n");
	EXPECT_EQ(written([](OStream& s) { writeBool(s, 0, "b", false); }), "<b>false</b>\n");
	EXPECT_EQ(written([](OStream& s) { writeVec2(s, 0, "v", Vec2d(1, -2.5)); }), "<v>1 -2.5</v>\n");
	EXPECT_EQ(written([](OStream& s) { writeVec3(s, 1, "v", Vec3d(0, 1e-7, (double)0.3f)); }),
		"\t<v>0 1e-7 0.30000001192092896</v>\n");
	EXPECT_EQ(written([](OStream& s) { writeMatrix2(s, 0, "matrix", Matrix2d()); }), "<matrix>1 0 0 1</matrix>\n");
}

TEST(XMLWrite, StringsChooseCDATAOnlyWhereWhiteSpaceWouldBeLost)
{
	struct Case
	{
		const char* value;
		const char* expected;
	};
	const Case cases[] = {
		{"", "<n></n>\n"},
		{"a b", "<n>a b</n>\n"},
		{"a  b", "<n><![CDATA[a  b]]></n>\n"},
		{"a b ", "<n><![CDATA[a b ]]></n>\n"},
		{" a", "<n><![CDATA[ a]]></n>\n"},
		{"a\tb", "<n>a&#x09;b</n>\n"},
		{"a\n\rb", "<n><![CDATA[a\n\rb]]></n>\n"},
		{"x]]>y  z", "<n><![CDATA[x]]>y  z]]></n>\n"},
		{"<a & 'b' \"c\">", "<n>&lt;a &amp; &apos;b&apos; &quot;c&quot;&gt;</n>\n"},
		// A numeric reference passes through; a lone ampersand does not.
		{"&#xA9; &#x", "<n>&#xA9; &#x</n>\n"},
		{"a&#", "<n>a&amp;#</n>\n"},
		{"\xC3\xA9t\xC3\xA9", "<n>\xC3\xA9t\xC3\xA9</n>\n"},
		{"\x01", "<n>&#x01;</n>\n"},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.value);
		EXPECT_EQ(written([&](OStream& s) { writeString(s, 0, "n", c.value); }), c.expected);
	}
}

// Its expected paths are written with the POSIX separator.
#ifndef _WIN32
TEST(XMLWrite, PathsJoinTheSceneDirectoryOnlyWhenAskedWithPosixSeparators)
{
	WriteContext relative;
	relative.scene_dir = "/scenes/a";
	WriteContext absolute = relative;
	absolute.write_absolute_paths = true;

	EXPECT_EQ(written([&](OStream& s) { writePath(s, 0, "path", "tex/t.png", relative); }), "<path>tex/t.png</path>\n");
	EXPECT_EQ(written([&](OStream& s) { writePath(s, 0, "path", "tex/t.png", absolute); }),
		"<path>/scenes/a/tex/t.png</path>\n");
	EXPECT_EQ(written([&](OStream& s) { writePath(s, 0, "path", "/abs/t.png", absolute); }), "<path>/abs/t.png</path>\n");
	EXPECT_EQ(written([&](OStream& s) { writePath(s, 0, "path", "", absolute); }), "<path></path>\n");
}
#endif
