// The light tag's IES preview: the template edited, the renderer (a test
// program standing in for it) run on it and waited for, the picture shown
// by the gadget.

#include "c4d/base_tag.h"
#include "c4d/bitmap_gadget.h"
#include "c4d/picture_test_helpers.h"
#include "c4d/host_paths.h"
#include "c4d/messages.h"
#include "host/host_test_helpers.h"
#include "host/ies_preview.h"
#include "host/light_tag.h"
#include "host/plugin_ids.h"
#include "host/settings.h"
#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/platform.h"
#include "support/platform_utils.h"
#include "support/user_data_dir.h"

#include <filesystem>
#include <memory>

using namespace Velorn;

namespace
{

const char* const kTemplate = "<scene>\n"
							  "    <model>\n"
							  "        <name>lamp</name>\n"
							  "        <ies_profile>\n"
							  "            <path>old.ies</path>\n"
							  "            <material_uid>3</material_uid>\n"
							  "        </ies_profile>\n"
							  "        <ies_profile>\n"
							  "            <path>second.ies</path>\n"
							  "        </ies_profile>\n"
							  "    </model>\n"
							  "    <model>\n"
							  "        <name>floor</name>\n"
							  "    </model>\n"
							  "    <model>\n"
							  "        <ies_profile>\n"
							  "            <material_uid>4</material_uid>\n"
							  "        </ies_profile>\n"
							  "    </model>\n"
							  "</scene>\n";

// A profile with two vertical angles and one horizontal one: ten numbers,
// three more, the angles 0 and 90, the angle 0, and two candela values.
const char* const kProfile = "IESNA:LM-63-2002\n[TEST] preview\nTILT=NONE\n1 1000 1 2 1 1 2 0 0 0\n1 1 100\n0 90\n0\n"
							 "500 250\n";

class IesPreviewTest : public HostPluginTest
{
protected:
	void SetUp() override
	{
		registerPlugins({RegisterLightTag});
		data_dir = std::make_unique<VelornTest::UserDataDirectory>(home.path());
		PlatformUtils::setEnvironmentVariable("VELORN_RECORD_ARGUMENTS", record());
		PlatformUtils::setEnvironmentVariable("VELORN_RECORD_PNG", "1");
		prefs = GeGetC4DPath(C4D_PATH_PREFS).GetString().GetStdString();
	}

	void TearDown() override
	{
		data_dir.reset();
		PlatformUtils::setEnvironmentVariable("VELORN_RECORD_PNG", "");
		HostPluginTest::TearDown();
	}

	// The renderer installed and recorded, the template in place.
	void install()
	{
		std::filesystem::copy_file(RECORD_ARGUMENTS, renderer.file("velorn.exe"));
		saveRendererDir(Filename(renderer.path().c_str()));
		FileUtils::createDirsForPath(FileUtils::join(prefs, "preview"));
		VelornTest::writeFile(sceneFile(), kTemplate);
	}

	std::string record() const { return out.file("arguments.txt"); }
	std::string sceneFile() const { return FileUtils::join(FileUtils::join(prefs, "preview"), "iespreview.vls"); }

	BaseTag* lightTag(const std::string& profile)
	{
		BaseTag* tag = addObject(Olight, "lamp")->MakeTag(ID_LIGHT_TAG);
		tag->SetParameter(DescID(lt_ies), GeData(1));
		tag->SetParameter(DescID(lt_ies_file), GeData(Filename(profile.c_str())));
		return tag;
	}

	static bool press(BaseTag* tag, int32_t type = MSG_DESCRIPTION_COMMAND, int32_t id = lt_preview_button)
	{
		DescriptionCommand command;
		command.id = id;
		return tag->Message(type, &command);
	}

	static IesPreviewOutcome outcome(BaseTag* tag) { return static_cast<LightTag*>(tag->GetNodeData())->lastPreview(); }

	static std::string previewFile(BaseTag* tag)
	{
		return tag->GetDataInstance()->GetFilename(lt_preview_file).GetString().GetStdString();
	}

	// The gadget's picture, null when it shows none.
	static const BaseBitmap* gadgetBitmap(BaseTag* tag, GeData& holder)
	{
		EXPECT_TRUE(tag->GetParameter(DescID(lt_preview_gadget), holder));
		EXPECT_EQ(holder.GetType(), CUSTOMDATATYPE_BITMAP_GADGET);
		const BitmapGadgetData* data = GetBitmapGadgetData(holder);
		return data ? data->GetBitmap() : nullptr;
	}

	std::string launchedWith() const { return argumentsAfterSeed(recordedArguments(record()), "velorn.exe"); }

	VelornTest::TempDir home, renderer, out, lamps;
	std::unique_ptr<VelornTest::UserDataDirectory> data_dir;
	std::string prefs;
};

} // namespace

// Its expected scene and recorded arguments are written with the line ends
// of POSIX text files.
#ifndef _WIN32
TEST_F(IesPreviewTest, RendersTheTemplateWithTheProfileAndShowsItWithPosixLineEnds)
{
	install();
	const std::string profile = lamps.file("spot light.ies");
	VelornTest::writeFile(profile, kProfile);
	BaseTag* tag = lightTag(profile);

	ASSERT_TRUE(press(tag));
	EXPECT_EQ(outcome(tag), IesPreviewOutcome::Rendered);

	// Every model's first profile points at the tag's file, its path
	// written last; the rest stays.
	const std::string path = "            <path>" + profile + "</path>\n";
	std::string expected = VelornTest::replacedAll(kTemplate,
		"            <path>old.ies</path>\n            <material_uid>3</material_uid>\n",
		"            <material_uid>3</material_uid>\n" + path);
	expected = VelornTest::replacedAll(expected, "<material_uid>4</material_uid>\n", "<material_uid>4</material_uid>\n" + path);
	EXPECT_EQ(VelornTest::readFile(sceneFile()), expected);

	// The picture file: "preview", the timer and ".png" in the renders folder.
	const std::string picture = previewFile(tag);
	const std::string renders = FileUtils::join(FileUtils::join(prefs, "Velorn for Cinema 4D"), "renders");
	ASSERT_EQ(picture.substr(0, renders.size() + 8), renders + Velorn::Platform::preferredSeparator() + "preview");
	ASSERT_EQ(picture.substr(picture.size() - 4), ".png");
	const std::string stem = picture.substr(0, picture.size() - 4);
	EXPECT_EQ(launchedWith(), "--thread_priority\nbelownormal\n-o\n" + stem + ".png\n-vlio\n" + stem
		+ ".vli\n-uexro\n" + stem + "_untonemapped.exr\n-texro\n" + stem + "_tonemapped.exr\n" + sceneFile() + "\n");

	// The renderer was waited for: its picture is in the gadget.
	GeData holder;
	const BaseBitmap* shown = gadgetBitmap(tag, holder);
	ASSERT_NE(shown, nullptr);
	EXPECT_EQ(shown->GetBw(), 4);
	EXPECT_EQ(pixelOf(*shown, 3, 3), (Rgb{255, 128, 0}));
	// Setting the gadget stores nothing in the tag.
	EXPECT_TRUE(tag->SetParameter(DescID(lt_preview_gadget), GeData(5)));
	EXPECT_EQ(tag->GetDataInstance()->GetData(lt_preview_gadget).GetType(), DA_NIL);

	// A second press renders over the same file.
	std::filesystem::remove(record());
	ASSERT_TRUE(press(tag));
	EXPECT_EQ(previewFile(tag), picture);
	EXPECT_NE(launchedWith().find("-o\n" + picture + "\n"), std::string::npos);
}
#endif

TEST_F(IesPreviewTest, ProfileCutShortEndsWithoutPicture)
{
	install();
	const std::string full(kProfile);
	const std::string profile = lamps.file("cut.ies");
	VelornTest::writeFile(profile, full.substr(0, full.find("500")));
	BaseTag* tag = lightTag(profile);

	EXPECT_FALSE(press(tag));
	EXPECT_EQ(outcome(tag), IesPreviewOutcome::RendererFailed);
	EXPECT_TRUE(FileUtils::fileExists(record()));
	EXPECT_FALSE(FileUtils::fileExists(previewFile(tag)));
	GeData holder;
	EXPECT_EQ(gadgetBitmap(tag, holder), nullptr);
}

TEST_F(IesPreviewTest, NothingWithoutProfileRendererOrTemplate)
{
	// No IES file: nothing is done, and that is no failure.
	BaseTag* no_profile = lightTag("");
	EXPECT_TRUE(press(no_profile));
	EXPECT_EQ(outcome(no_profile), IesPreviewOutcome::NoProfile);
	EXPECT_TRUE(previewFile(no_profile).empty());

	// No renderer anywhere, and the user cancels the requester.
	const std::string profile = lamps.file("a.ies");
	VelornTest::writeFile(profile, kProfile);
	BaseTag* tag = lightTag(profile);
	EXPECT_FALSE(press(tag));
	EXPECT_EQ(outcome(tag), IesPreviewOutcome::NoRenderer);
	EXPECT_FALSE(previewFile(tag).empty());

	// A renderer but no template.
	std::filesystem::copy_file(RECORD_ARGUMENTS, renderer.file("velorn.exe"));
	saveRendererDir(Filename(renderer.path().c_str()));
	EXPECT_FALSE(press(tag));
	EXPECT_EQ(outcome(tag), IesPreviewOutcome::NoTemplate);
	EXPECT_FALSE(FileUtils::fileExists(record()));
}

TEST_F(IesPreviewTest, GadgetRefreshLoadsThePreviewFile)
{
	install();
	const std::string profile = lamps.file("a.ies");
	VelornTest::writeFile(profile, kProfile);
	BaseTag* rendered = lightTag(profile);
	ASSERT_TRUE(press(rendered));

	// Another tag naming that picture shows it on the gadget's refresh, not before.
	BaseTag* tag = lightTag(profile);
	tag->SetParameter(DescID(lt_preview_file), GeData(Filename(previewFile(rendered).c_str())));
	GeData holder;
	EXPECT_EQ(gadgetBitmap(tag, holder), nullptr);
	press(tag, MSG_DESCRIPTION_GADGET_REFRESH, lt_ies_file);
	EXPECT_EQ(gadgetBitmap(tag, holder), nullptr);
	press(tag, MSG_DESCRIPTION_GADGET_REFRESH, lt_preview_gadget);
	EXPECT_NE(gadgetBitmap(tag, holder), nullptr);
}
