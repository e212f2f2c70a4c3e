#include "c4d/filename.h"

#include "support/platform.h"

#include <gtest/gtest.h>

TEST(Filename, PartsAndSuffix)
{
	// suffixed: the path after SetSuffix(newSuffix), when given.
	const struct
	{
		const char *path, *file, *directory, *suffix, *newSuffix, *suffixed;
	} cases[] = {
		{"/scenes/box.c4d", "box.c4d", "/scenes", "c4d", "vls", "/scenes/box.vls"},
		{"/scenes/box", "box", "/scenes", "", "vls", "/scenes/box.vls"},
		{"box.tar.gz", "box.tar.gz", "", "gz", "zip", "box.tar.zip"},
		{"/sce.nes/box", "box", "/sce.nes", "", "vls", "/sce.nes/box.vls"},
		{"/scenes/box.vls", "box.vls", "/scenes", "vls", "", "/scenes/box"},
		{"/scenes/", "", "/scenes", "", nullptr, nullptr},
		{"", "", "", "", nullptr, nullptr},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.path);
		Filename f(t.path);
		EXPECT_EQ(f.GetFile().GetString(), String(t.file));
		EXPECT_EQ(f.GetDirectory().GetString(), String(t.directory));
		EXPECT_EQ(f.GetSuffix(), String(t.suffix));
		if(!t.newSuffix)
			continue;
		f.SetSuffix(t.newSuffix);
		EXPECT_EQ(f.GetString(), String(t.suffixed));
	}
}

TEST(Filename, AppendsParts)
{
	// Parts are joined with the system's separator, as the library joins paths.
	const std::string separator(1, Velorn::Platform::preferredSeparator());
	EXPECT_EQ((Filename("/scenes") + Filename("box_meshes") + Filename("m1.vlmesh")).GetString(),
		String("/scenes" + separator + "box_meshes" + separator + "m1.vlmesh"));
	EXPECT_EQ((Filename("/scenes/") + Filename("box.vls")).GetString(), String("/scenes/box.vls"));
	EXPECT_EQ((Filename() + Filename("box.vls")).GetString(), String("box.vls"));
	EXPECT_EQ((Filename("/scenes") + Filename("/tmp/box.vls")).GetString(), String("/tmp/box.vls"));
}
