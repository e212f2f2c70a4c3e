#include "materials/material_plugin.h"

#include "c4d/base_shader.h"
#include "c4d/plugin_test_helpers.h"
#include "c4d/render_data.h"
#include "host/plugin_globals.h"
#include "materials/material_test_helpers.h"
#include "materials/nk_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace
{

using Ids = std::set<int32_t>;

class MaterialDescriptionTest : public MaterialTest
{
protected:
	Description describe(BaseMaterial* mat)
	{
		Description description;
		int32_t flags = 0;
		EXPECT_TRUE(plugin(mat)->GetDDescription(mat, &description, flags));
		EXPECT_TRUE(flags & DESCFLAGS_DESC_LOADED);
		return description;
	}
};

// Which of ids the description shows; a missing entry fails the test.
Ids shownOf(const Description& description, const std::vector<int32_t>& ids)
{
	Ids shown;
	for(int32_t id : ids)
	{
		const DescriptionEntry* entry = description.find(DescID(id));
		EXPECT_NE(entry, nullptr) << "no entry " << id;
		if(entry && !entry->settings.GetBool(DESC_HIDE))
			shown.insert(id);
	}
	return shown;
}

std::vector<std::string> cycleLabels(const Description& description, int32_t id)
{
	std::vector<std::string> labels;
	if(const DescriptionEntry* entry = description.find(DescID(id)))
		for(const auto& [value, label] : entry->settings.GetContainer(DESC_CYCLE))
			labels.push_back(std::to_string(value) + "=" + label.GetString().GetStdString());
	return labels;
}

} // namespace

TEST_F(MaterialDescriptionTest, EachKindShowsItsSwitchesAndPages)
{
	const std::vector<int32_t> switches = {6002, 6003, 6004, 6010, 6008, 6009, 6005, 6292, 6006, 6007, 6011, 6280,
		6303, 6307, 6310, 6311, 6315, 6313, 6316, 6317, 6318, 6319};
	const std::vector<int32_t> pages = {6013, 6015, 6016, 6022, 6020, 6021, 6017, 6293, 6018, 6019, 6023, 6279,
		6302, 6308, 6309, 6312, 6314, 6320, 6321, 6322, 6323, 6324};
	const struct
	{
		int32_t kind;
		Ids switches, pages;
	} kinds[] = {
		{6025, {6002, 6003, 6005, 6292, 6006, 6007}, {6015, 6017, 6018, 6019}},
		{6026, {6002, 6003, 6009, 6005, 6292, 6006, 6007}, {6015, 6021, 6017, 6018, 6019}},
		{6027, {6002, 6003, 6004, 6008, 6005, 6292, 6006, 6007, 6315}, {6015, 6016, 6020, 6017, 6018, 6019}},
		{6028, {6002, 6003, 6010, 6005, 6292, 6006, 6007}, {6015, 6017, 6018, 6019}},
		{6029, {6002, 6010, 6005, 6292, 6006, 6007, 6011, 6280}, {6022, 6023, 6017, 6018, 6019}},
		{6030, {6002}, {6013}},
		{6031, {6002, 6010, 6008, 6005, 6292, 6006, 6007, 6280}, {6022, 6020, 6017, 6018, 6019}},
		{6262, {6002}, {}},
		{6300, {6002, 6005, 6292, 6006, 6007, 6303, 6307, 6310, 6311, 6315},
			{6302, 6308, 6309, 6312, 6320, 6017, 6018, 6019}},
		{6301, {6002, 6005, 6292, 6006, 6007, 6311, 6315, 6313, 6316, 6317, 6318, 6319},
			{6312, 6320, 6314, 6321, 6322, 6323, 6324, 6017, 6018, 6019}},
		// No kind: the switches of every kind show, the pages follow the
		// switches a new material has.
		{7777, {6002, 6005, 6292, 6006, 6007}, {6015, 6017, 6018, 6019}},
	};
	for(const auto& k : kinds)
	{
		SCOPED_TRACE("kind " + std::to_string(k.kind));
		BaseMaterial* mat = newMaterial(k.kind);
		// Emission, bump and displacement are off, yet their pages show.
		EXPECT_FALSE(mat->GetDataInstance()->GetBool(MAT_USE_EMISSION));
		const Description description = describe(mat);
		EXPECT_EQ(shownOf(description, switches), k.switches);
		EXPECT_EQ(shownOf(description, pages), k.pages);
	}
}

// Spectrum modes show only their own group; other entries follow the values
// they depend on.
TEST_F(MaterialDescriptionTest, DependentEntriesFollowTheirValues)
{
	const std::vector<int32_t> watched = {6082, 6282, 6123, 6124, 6125, 6286, 6132, 6143, 6038, 6146, 6299, 6048,
		6090, 6281};
	const std::vector<int32_t> absorption = {6211, 6212, 6213, 6214, 6215}, scattering = {6218, 6219, 6220, 6221,
		6222}, emission = {6058, 6059, 6238, 6239, 6240}, g10 = {10002, 10006, 10009, 10014},
		g16 = {16002, 16006, 16009, 16014};
	const int32_t SSS = MAT_MEDIUM_SSS, KIND = MAT_MEDIUM_KIND, HG = MAT_PHASE_KIND, IES = MAT_IES_ON;
	const int32_t hg = MAT_PHASE_HENYEY_GREENSTEIN, mode = MAT_PHONG_SPECULAR_MODE;
	const struct
	{
		std::vector<std::pair<int32_t, int32_t>> values;
		int realtime;
		const std::vector<int32_t>& ids;
		Ids shown;
	} cases[] = {
		{{{6210, 6105}}, 0, absorption, {6212}},
		{{{6217, 6107}}, 0, scattering, {6221}},
		{{{6057, 6106}}, 0, emission, {6238}},
		{{{6057, 6108}}, 0, emission, {6240}},
		{{{10001, 6104}}, 0, g10, {10002}},
		{{{16001, 6105}}, 0, g16, {16006}},
		{{{16001, 6106}}, 0, g16, {16009}},
		{{{16001, 6107}}, 0, g16, {16014}},
		{{{16001, 6108}}, 0, g16, {}}, // a generic channel has no table
		{{}, 0, watched, {6123, 6038, 6146, 6048, 6090, 6281}},
		{{{MAT_EMISSION_SCALE_ON, 1}, {IES, 1}}, 0, watched, {6082, 6282, 6123, 6038, 6146, 6048, 6090, 6281}},
		{{{KIND, MAT_MEDIUM_DERMIS}}, 0, watched, {6124, 6038, 6146, 6048, 6090, 6281}},
		{{{KIND, MAT_MEDIUM_EPIDERMIS}}, 0, watched, {6125, 6038, 6146, 6048, 6090, 6281}},
		{{{KIND, MAT_MEDIUM_ATMOSPHERE}}, 0, watched, {6286, 6038, 6146, 6048, 6090, 6281}},
		{{{KIND, 7000}}, 0, watched, {6123, 6038, 6146, 6048, 6090, 6281}},
		{{{SSS, 1}}, 0, watched, {6123, 6132, 6038, 6146, 6048, 6090, 6281}},
		{{{SSS, 1}, {HG, hg}}, 0, watched, {6123, 6132, 6143, 6038, 6146, 6048, 6090, 6281}},
		{{{HG, hg}}, 0, watched, {6123, 6038, 6146, 6048, 6090, 6281}},
		{{{mode, 1}}, 0, watched, {6123, 6146, 6048, 6090, 6281}},
		{{{MAT_PHONG_USE_NK, 1}, {mode, 1}}, 0, watched, {6123, 6038, 6299, 6048, 6090, 6281}},
		{{{SSS, 1}, {IES, 1}}, 1, watched, {6123, 6038, 6146}}, // the realtime edition
	};
	for(size_t i = 0; i < std::size(cases); ++i)
	{
		SCOPED_TRACE("case " + std::to_string(i));
		BaseMaterial* mat = newMaterial();
		for(const auto& [id, value] : cases[i].values)
			mat->GetDataInstance()->SetInt32(id, value);
		realtime_edition = cases[i].realtime;
		const Description description = describe(mat);
		realtime_edition = 0;
		EXPECT_EQ(shownOf(description, cases[i].ids), cases[i].shown);
	}
}

TEST_F(MaterialDescriptionTest, LayerCycleNamesTheVideoPostLayers)
{
	registerPlainPlugins(PluginKind::VideoPost, {ID_VIDEO_POST});
	BaseVideoPost* post = BaseVideoPost::Alloc(ID_VIDEO_POST);
	doc->GetActiveRenderData()->InsertVideoPostLast(post);
	const char* names[] = {"Sun", "L1", "L2", "L3", "L4", "L5", "L6", "L7", "L8", ""};
	std::vector<std::string> plain, named;
	for(int32_t i = 0; i < 10; ++i)
	{
		post->GetDataInstance()->SetString(1410 + i, String(names[i]));
		plain.push_back(std::to_string(i) + "=Layer " + std::to_string(i + 1));
		named.push_back(plain.back() + ": " + names[i]); // even an empty name
	}
	BaseMaterial* mat = newMaterial();
	EXPECT_EQ(cycleLabels(describe(mat), MAT_EMISSION_LAYER), named);
	post->SetInfo(VIDEOPOST_DISABLED);
	EXPECT_EQ(cycleLabels(describe(mat), MAT_EMISSION_LAYER), plain);
}

TEST_F(MaterialDescriptionTest, GenericChannelsAreBuiltWithTheirRanges)
{
	const Description description = describe(newMaterial(MAT_TYPE_COATING));
	const struct
	{
		int32_t id, dtype, parent;
		const char* name;
		std::vector<double> range; // min, max, step, slider min and max
	} entries[] = {
		{10002, DTYPE_GROUP, 6308, "RGB", {}},
		{10003, DTYPE_COLOR, 10002, "Colour", {}},
		{10004, DTYPE_REAL, 10002, "Scale", {0, 100, 0.01, 0, 100}},
		{10005, DTYPE_REAL, 10002, "Gamma", {0, 100, 0.1, 0.4, 5}},
		{10007, DTYPE_REAL, 10006, "Temperature", {0, 40000, 10, 0, 10000}},
		{10010, DTYPE_REAL, 10009, "Peak Min", {400, 700, 10, 400, 700}},
		{10011, DTYPE_REAL, 10009, "Peak Width", {0, 500, 10, 0, 500}},
		{10013, DTYPE_REAL, 10009, "Base Value", {0, 1000000, 1, 0, 1000000}},
		{16015, DTYPE_REAL, 16014, "Value", {0, 1000000, 0.1, 0, 10}},
		{16016, DTYPE_BASELISTLINK, 6323, "Texture", {}},
		{16018, DTYPE_REAL, 6323, "Texture A", {-1000000, 1000000, 0.1, -1, 1}},
		{11021, DTYPE_REAL, 6309, "Value (\xC2\xB5m)", {0, 1000000, 1, 0, 5000}},
		{11022, DTYPE_BOOL, 6309, "Smooth", {}},
		{12021, DTYPE_REAL, 6312, "Value", {0, 1, 0.01, 0, 1}},
		{13021, DTYPE_REAL, 6320, "Value", {0, 1, 0.01, 0, 1}},
		{14021, DTYPE_REAL, 6321, "Value", {0, 1, 0.01, 0, 1}},
		{15021, DTYPE_REAL, 6322, "Value", {0, 1, 0.01, 0, 1}},
		{17021, DTYPE_REAL, 6324, "Value", {0, 1, 0.01, 0, 1}},
	};
	for(const auto& e : entries)
	{
		SCOPED_TRACE(e.id);
		const DescriptionEntry* entry = description.find(DescID(e.id));
		ASSERT_NE(entry, nullptr);
		const BaseContainer& s = entry->settings;
		EXPECT_EQ(entry->dtype, e.dtype);
		EXPECT_EQ(entry->parent, e.parent);
		EXPECT_EQ(s.GetString(DESC_NAME), String(e.name));
		const std::vector<double> range = {s.GetFloat(DESC_MIN), s.GetFloat(DESC_MAX), s.GetFloat(DESC_STEP),
			s.GetFloat(DESC_MINSLIDER), s.GetFloat(DESC_MAXSLIDER)};
		EXPECT_EQ(e.dtype == DTYPE_REAL ? range : std::vector<double>{}, e.range);
	}
	EXPECT_EQ(cycleLabels(description, 10001),
		(std::vector<std::string>{"6104=RGB", "6105=Blackbody", "6106=Peak", "6107=Uniform", "6108=Tabulated"}));
	// The spectrum channels have no constant value, the real ones no mode.
	EXPECT_EQ(description.find(DescID(10021)), nullptr);
	EXPECT_EQ(description.find(DescID(11001)), nullptr);
}

TEST_F(MaterialDescriptionTest, NkChoiceIsMigratedAndKeptInTheTable)
{
	BaseMaterial* mat = newMaterial(MAT_TYPE_PHONG);
	BaseContainer* data = mat->GetDataInstance();
	data->SetString(MAT_PHONG_NK_NAME, String("au.nk"));
	const std::vector<std::string> labels = cycleLabels(describe(mat), MAT_PHONG_NK_FILE);
	EXPECT_EQ(data->GetInt32(MAT_PHONG_NK_FILE), 39);
	EXPECT_EQ(data->GetDataPointer(MAT_PHONG_NK_NAME), nullptr);
	ASSERT_EQ(labels.size(), 203u);
	EXPECT_EQ(labels[0], "0=Ag.nk");
	EXPECT_EQ(labels[39], "39=Au.nk");
	EXPECT_EQ(labels[202], "202=Zrsi2.nk");
	EXPECT_EQ(FindNkFile(String("SIN_BF5.nk")), 153); // case folded

	// A name the table lacks is dropped and the index stays.
	data->SetString(MAT_PHONG_NK_NAME, String("Unobtainium.nk"));
	describe(mat);
	EXPECT_EQ(data->GetInt32(MAT_PHONG_NK_FILE), 39);
	EXPECT_EQ(data->GetDataPointer(MAT_PHONG_NK_NAME), nullptr);

	// Negative or above the table's count goes back to 0.
	for(const auto& [before, after] : std::vector<std::pair<int32_t, int32_t>>{{500, 0}, {-1, 0}, {204, 0}, {203, 203}})
	{
		data->SetInt32(MAT_PHONG_NK_FILE, before);
		describe(mat);
		EXPECT_EQ(data->GetInt32(MAT_PHONG_NK_FILE), after) << before;
	}
}

TEST_F(MaterialDescriptionTest, LinkedShadersDisableWhatTheyOverride)
{
	registerPlainPlugins(PluginKind::Shader, {1023863});
	// Enabled with no shader, with the plug-in's own shader and with a
	// foreign one linked in 6118, 6052, 10016 and 11016.
	const struct
	{
		bool none, own, foreign;
		std::vector<int32_t> ids;
	} rows[] = {
		{true, false, false, {6081, 6114, 6260, 10001, 10003, 10015, 11021}},
		{false, true, true, {6261}},
		{false, false, true, {6119, 6053, 6291, 10017, 10020, 11017, 11022}},
		{true, true, true, {6040, 16003}}, // linked elsewhere
	};
	for(int variant = 0; variant < 3; ++variant)
	{
		SCOPED_TRACE(variant == 0 ? "no shader" : variant == 1 ? "own shader" : "foreign shader");
		BaseMaterial* mat = newMaterial();
		for(int32_t link : {6118, 6052, 10016, 11016})
		{
			if(variant == 0)
				break;
			BaseShader* shader = BaseShader::Alloc(variant == 1 ? 1023863 : Xbitmap);
			mat->InsertShader(shader);
			mat->GetDataInstance()->SetLink(link, shader);
		}
		for(const auto& row : rows)
		{
			const bool enabled = variant == 0 ? row.none : variant == 1 ? row.own : row.foreign;
			for(int32_t id : row.ids)
				EXPECT_EQ(mat->IsParameterEnabled(DescID(id)), enabled) << id;
		}
	}
	// The medium's index and dispersion do not apply to a transmitter.
	EXPECT_FALSE(newMaterial(MAT_TYPE_DIFFUSE_TRANSMITTER)->IsParameterEnabled(DescID(MAT_MEDIUM_IOR)));
	EXPECT_FALSE(newMaterial(MAT_TYPE_DIFFUSE_TRANSMITTER)->IsParameterEnabled(DescID(MAT_MEDIUM_CAUCHY_B)));
	EXPECT_TRUE(newMaterial(MAT_TYPE_SPECULAR)->IsParameterEnabled(DescID(MAT_MEDIUM_IOR)));
}

TEST_F(MaterialDescriptionTest, AMissingDescriptionLeavesTheMaterialAlone)
{
	BaseMaterial* mat = newMaterial();
	mat->GetDataInstance()->SetString(MAT_PHONG_NK_NAME, String("au.nk"));
	const BaseContainer before = mat->GetData();
	VelornTest::TempDir empty;
	HostResources::get().init(Filename(String(empty.path())));
	Description description;
	int32_t flags = 0;
	EXPECT_FALSE(plugin(mat)->GetDDescription(mat, &description, flags));
	EXPECT_EQ(mat->GetData(), before);
}
