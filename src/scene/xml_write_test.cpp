#include "scene/rotation.h"
#include "scene/scene_node_camera.h"
#include "scene/scene_node_material.h"
#include "scene/scene_node_model.h"
#include "scene/texture.h"
#include "scene/xml_write.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

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

// Every writer of a path hands it the context, so that it is joined too.
TEST(XMLWrite, EveryPathOfAValueOrNodeIsJoinedOnRequest)
{
	WriteContext context;
	context.scene_dir = "/scenes";
	context.write_absolute_paths = true;
	Texture texture;
	texture.path = "maps/wood.png";
	SceneNodeCamera camera;
	camera.obstacle_map_path = "dust.png";
	camera.aperture_shape = new ApertureImage("hex.png");
	SceneNodeModel model;
	model.rotation = new MatrixRotation();
	Reference<IESProfile> profile(new IESProfile());
	profile->path = "ies/spot.ies";
	model.setIESProfiles({profile});
	struct Case
	{
		const char* what;
		std::function<void(OStream&)> write;
		std::vector<std::string> paths;
	};
	const Case cases[] = {
		{"texture", [&](OStream& s) { texture.writeXML(s, 0, context); }, {"\t<path>/scenes/maps/wood.png</path>\n"}},
		{"camera", [&](OStream& s) { camera.writeXML(s, 0, context); },
			{"\t\t<path>/scenes/dust.png</path>\n", "\t\t\t<path>/scenes/hex.png</path>\n"}},
		{"model", [&](OStream& s) { model.writeXML(s, 0, context); }, {"\t\t<path>/scenes/ies/spot.ies</path>\n"}},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.what);
		const std::string text = written(c.write);
		for(const std::string& path : c.paths)
			EXPECT_NE(text.find(path), std::string::npos) << text;
	}
}
#endif
