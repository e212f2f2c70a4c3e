// The light tag's IES preview rendered by the stand-in renderer: the
// template installed from the module's resources, the renderer run on it,
// and the picture in the tag's gadget lit as the profile's candela table
// and the inverse-square and cosine laws say.

#include "c4d/base_tag.h"
#include "c4d/bitmap_gadget.h"
#include "c4d/host_paths.h"
#include "c4d/messages.h"
#include "host/host_test_helpers.h"
#include "host/ies_preview.h"
#include "host/light_tag.h"
#include "host/plugin_ids.h"
#include "host/settings.h"
#include "support/file_utils.h"
#include "support/test_files.h"
#include "support/user_data_dir.h"

#include <cmath>
#include <vector>

using namespace Velorn;

namespace
{

// The shipped template's scene, worked out from its file: a lamp 50 cm in
// front of the wall (y = 0) and 80 cm above its middle, pointing down (-z),
// its horizontal angle 0 towards +x; an orthographic view of 2 m by 2 m of
// the wall in 48 by 48 pixels; linear tone mapping under a display gamma
// of 2.2.
const double lamp[3] = {0, -0.5, 0.8};
const int picture_side = 48;
const double wall_side = 2.0;
const double display_gamma = 2.2;

// A candela table as an LM-63 file lists it: one row of vertical angles'
// values per horizontal angle.
struct Table
{
	std::vector<double> vertical, horizontal;
	std::vector<std::vector<double>> rows;
};

double lerp(const std::vector<double>& at, const std::vector<double>& values, double x)
{
	for(size_t i = 0; i + 1 < at.size(); ++i)
		if(x <= at[i + 1])
			return values[i] + (values[i + 1] - values[i]) * (x - at[i]) / (at[i + 1] - at[i]);
	return values.back();
}

// Candela at vertical angle theta and horizontal angle phi (degrees) of a
// table whose horizontal angles run from 0 to 180 (or are just one), read
// linearly in both.
double candela(const Table& table, double theta, double phi)
{
	if(table.horizontal.size() == 1)
		return lerp(table.vertical, table.rows[0], theta);
	std::vector<double> column;
	for(const std::vector<double>& row : table.rows)
		column.push_back(lerp(table.vertical, row, theta));
	return lerp(table.horizontal, column, phi);
}

// The wall's radiance at (x, 0, z) over a constant: the lamp's candela
// towards the point, times the cosine at the wall, over the squared distance.
double wallLight(const Table& table, double x, double z)
{
	const double d[3] = {x - lamp[0], 0 - lamp[1], z - lamp[2]};
	const double r2 = d[0] * d[0] + d[1] * d[1] + d[2] * d[2];
	const double r = std::sqrt(r2);
	const double to_degrees = 180 / 3.14159265358979;
	const double theta = std::acos(-d[2] / r) * to_degrees;
	const double phi = std::atan2(d[1], d[0]) * to_degrees;
	const double cos_wall = d[1] / r;
	return candela(table, theta, phi) * cos_wall / r2;
}

// The mean of wallLight over the wall seen by the 3 by 3 pixels about
// (px, py), from 4 by 4 points in each pixel.
double expectedLight(const Table& table, int px, int py)
{
	const double pixel = wall_side / picture_side;
	double sum = 0;
	for(int i = 0; i < 12; ++i)
		for(int j = 0; j < 12; ++j)
			sum += wallLight(table, -wall_side / 2 + (px - 1 + (i + 0.5) / 4) * pixel,
				wall_side / 2 - (py - 1 + (j + 0.5) / 4) * pixel);
	return sum / 144;
}

class IesPreviewRenderTest : public HostPluginTest
{
protected:
	void SetUp() override
	{
		registerPlugins({RegisterLightTag});
		// The module's resources are the source tree's.
		saved_plugin_path = plugin_path;
		plugin_path = new Filename(::String(VelornTest::testDataPath("../src/host")));
		saveRendererDir(Filename(STANDIN_RENDERER_DIR));
	}

	void TearDown() override
	{
		delete plugin_path;
		plugin_path = saved_plugin_path;
		HostPluginTest::TearDown();
	}

	BaseTag* lightTag(const std::string& profile)
	{
		BaseTag* tag = addObject(Olight, "lamp")->MakeTag(ID_LIGHT_TAG);
		tag->SetParameter(DescID(lt_ies), GeData(1));
		tag->SetParameter(DescID(lt_ies_file), GeData(Filename(profile.c_str())));
		return tag;
	}

	static IesPreviewOutcome outcome(BaseTag* tag) { return static_cast<LightTag*>(tag->GetNodeData())->lastPreview(); }

	// The linear value of a block of 3 by 3 pixels about (px, py), the
	// mean of the red channel with the display curve undone.
	static double shownLight(const BaseBitmap& bitmap, int px, int py)
	{
		double sum = 0;
		for(int dx = -1; dx <= 1; ++dx)
			for(int dy = -1; dy <= 1; ++dy)
			{
				uint16_t r, g, b;
				bitmap.GetPixel(px + dx, py + dy, &r, &g, &b);
				sum += std::pow(r / 255.0, display_gamma);
			}
		return sum / 9;
	}

	// Presses the preview button.
	static bool press(BaseTag* tag)
	{
		DescriptionCommand command;
		command.id = lt_preview_button;
		return tag->Message(MSG_DESCRIPTION_COMMAND, &command);
	}

	// The gadget's picture, null when it shows none.
	static const BaseBitmap* shownPicture(BaseTag* tag, GeData& holder)
	{
		EXPECT_TRUE(tag->GetParameter(DescID(lt_preview_gadget), holder));
		const BitmapGadgetData* gadget = GetBitmapGadgetData(holder);
		return gadget ? gadget->GetBitmap() : nullptr;
	}

	VelornTest::TempDir home;
	const VelornTest::UserDataDirectory data_dir{home.path()};
	Filename* saved_plugin_path = nullptr;
};

} // namespace

TEST_F(IesPreviewRenderTest, WallIsLitAsTheCandelaTableSays)
{
	struct Case
	{
		const char* profile;
		Table table;
	};
	const Case cases[] = {
		// The plug-in's own profile, the same all round: the wall shows the
		// inverse-square and cosine laws alone.
		{"../src/host/presets/default.ies", {{0, 90, 180}, {0}, {{1000, 1000, 1000}}}},
		// Brighter towards horizontal angle 0 (the picture's right) than
		// towards 180, falling off from straight down.
		{"data/ies/bilateral.ies",
			{{0, 30, 60, 90, 120, 150, 180}, {0, 90, 180},
				{{1000, 950, 700, 300, 100, 50, 20}, {1000, 800, 450, 150, 60, 30, 20},
					{1000, 600, 250, 80, 40, 20, 20}}}},
	};
	// Blocks of pixels away from the lamp's height (row 4.8), where its
	// disc is seen edge on, and from the picture's edge. The first is the
	// one the others are measured against.
	const int blocks[][2] = {{24, 16}, {8, 16}, {40, 16}, {24, 9}, {24, 28}, {12, 40}, {36, 40}, {4, 8}, {43, 8}};
	// 3% of each ratio: the renderer's noise at 64 samples per pixel, the
	// display's 8 bits and the lamp's 1 cm size together come to about 1%.
	// Leaving out the surface cosine of the lamp's radiance, or mirroring
	// the horizontal angles, moves some ratios by far more.
	const double tolerance = 0.03;

	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.profile);
		BaseTag* tag = lightTag(VelornTest::testDataPath(c.profile));
		ASSERT_TRUE(press(tag));
		ASSERT_EQ(outcome(tag), IesPreviewOutcome::Rendered);
		GeData holder;
		const BaseBitmap* shown = shownPicture(tag, holder);
		ASSERT_NE(shown, nullptr);
		ASSERT_EQ(shown->GetBw(), picture_side);
		ASSERT_EQ(shown->GetBh(), picture_side);

		const double shown_reference = shownLight(*shown, blocks[0][0], blocks[0][1]);
		const double expected_reference = expectedLight(c.table, blocks[0][0], blocks[0][1]);
		ASSERT_GT(shown_reference, 0);
		for(const auto& block : blocks)
		{
			SCOPED_TRACE(testing::Message() << "block about " << block[0] << ", " << block[1]);
			const double expected = expectedLight(c.table, block[0], block[1]) / expected_reference;
			const double ratio = shownLight(*shown, block[0], block[1]) / shown_reference;
			EXPECT_NEAR(ratio / expected, 1.0, tolerance) << "shown " << ratio << ", expected " << expected;
		}
	}

	// The template was installed from the module's resources, and the
	// lamp's profile is the last one previewed.
	const std::string scene = GeGetC4DPath(C4D_PATH_PREFS).GetString().GetStdString() + "/preview/iespreview.vls";
	EXPECT_NE(VelornTest::readFile(scene).find("<path>" + VelornTest::testDataPath("data/ies/bilateral.ies") + "</path>"),
		std::string::npos);
}

TEST_F(IesPreviewRenderTest, ProfileCutShortGivesNoPicture)
{
	// The renderer refuses the profile with exit code 1; the gadget stays
	// empty.
	VelornTest::TempDir lamps;
	const std::string full = VelornTest::readFile(VelornTest::testDataPath("data/ies/bilateral.ies"));
	const std::string profile = lamps.file("cut.ies");
	VelornTest::writeFile(profile, full.substr(0, full.rfind("1000")));
	BaseTag* tag = lightTag(profile);
	EXPECT_FALSE(press(tag));
	EXPECT_EQ(outcome(tag), IesPreviewOutcome::RendererFailed);
	EXPECT_FALSE(FileUtils::fileExists(tag->GetDataInstance()->GetFilename(lt_preview_file).GetString().GetStdString()));
	GeData holder;
	EXPECT_EQ(shownPicture(tag, holder), nullptr);
}

TEST_F(IesPreviewRenderTest, AnEditedTemplateIsKeptAndCompleted)
{
	// The user's template renders 8 pixels a side; the lamp's and the
	// wall's meshes are missing beside it and come from the module.
	const std::string dir = GeGetC4DPath(C4D_PATH_PREFS).GetString().GetStdString() + "/preview";
	std::string edited = VelornTest::readFile(VelornTest::testDataPath("../src/host/res/preview/iespreview.vls"));
	for(const std::string side : {"width", "height"})
		edited = VelornTest::replacedAll(edited, "<" + side + ">48</" + side + ">", "<" + side + ">8</" + side + ">");
	FileUtils::createDirsForPath(dir);
	VelornTest::writeFile(dir + "/iespreview.vls", edited);

	BaseTag* tag = lightTag(VelornTest::testDataPath("data/ies/bilateral.ies"));
	ASSERT_TRUE(press(tag));
	EXPECT_TRUE(FileUtils::fileExists(dir + "/iespreview_lamp.obj"));
	EXPECT_TRUE(FileUtils::fileExists(dir + "/iespreview_wall.obj"));
	GeData holder;
	const BaseBitmap* shown = shownPicture(tag, holder);
	ASSERT_NE(shown, nullptr);
	EXPECT_EQ(shown->GetBw(), 8);
}
