#include "c4d/filename.h"

#include "support/platform.h"

#include <gtest/gtest.h>

TEST(Filename, Parts)
{
	const struct
	{
		const char* path;
		const char* file;
		const char* directory;
		const char* suffix;
	} cases[] = {
		{"/scenes/box.vls", "box.vls", "/scenes", "vls"},
		{"/scenes/box", "box", "/scenes", ""},
		{"box.tar.gz", "box.tar.gz", "", "gz"},
		{"/sce.nes/box", "box", "/sce.nes", ""},
		{"/scenes/", "", "/scenes", ""},
		{"", "", "", ""},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.path);
		const Filename f(t.path);
		EXPECT_EQ(f.GetFile().GetString(), String(t.file));
		EXPECT_EQ(f.GetDirectory().GetString(), String(t.directory));
		EXPECT_EQ(f.GetSuffix(), String(t.suffix));
	}
}

TEST(Filename, SetSuffix)
{
	const struct
	{
		const char* path;
		const char* suffix;
		const char* result;
	} cases[] = {
		{"/scenes/box.c4d", "vls", "/scenes/box.vls"},
		{"/scenes/box", "vls", "/scenes/box.vls"},
		{"/sce.nes/box", "vls", "/sce.nes/box.vls"},
		{"box.tar.gz", "zip", "box.tar.zip"},
		{"/scenes/box.vls", "", "/scenes/box"},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.path);
		Filename f(t.path);
		f.SetSuffix(t.suffix);
		EXPECT_EQ(f.GetString(), String(t.result));
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
	EXPECT_TRUE(Filename("a").Content());
	EXPECT_FALSE(Filename().Content());
	EXPECT_NE(Filename("a"), Filename("b"));
}
