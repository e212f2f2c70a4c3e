#include "materials/material_plugin.h"

#include "c4d/base_shader.h"
#include "c4d/plugin_test_helpers.h"
#include "c4d/render_data.h"
#include "host/plugin_globals.h"
#include "materials/material_test_helpers.h"
#include "materials/nk_table.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace
{

class MaterialDescriptionTest : public MaterialTest
{
protected:
	// The material's description as the attribute manager gets it.
	Description describe(BaseMaterial* mat)
	{
		Description description;
		int32_t flags = 0;
		EXPECT_TRUE(plugin(mat)->GetDDescription(mat, &description, flags));
		EXPECT_TRUE(flags & DESCFLAGS_DESC_LOADED);
		return description;
	}
};

// The entry's own hide flag; a missing entry fails the test.
bool hidden(const Description& description, int32_t id)
{
	const DescriptionEntry* entry = description.find(DescID(id));
	EXPECT_NE(entry, nullptr) << "no entry " << id;
	return entry && entry->settings.GetBool(DESC_HIDE);
}

const std::vector<int32_t> kSwitches = {6002, 6003, 6004, 6010, 6008, 6009, 6005, 6292, 6006, 6007, 6011, 6280,
	6303, 6307, 6310, 6311, 6315, 6313, 6316, 6317, 6318, 6319};
const std::vector<int32_t> kPages = {6013, 6015, 6016, 6022, 6020, 6021, 6017, 6293, 6018, 6019, 6023, 6279, 6302,
	6308, 6309, 6312, 6314, 6320, 6321, 6322, 6323, 6324};

std::set<int32_t> shownOf(const Description& description, const std::vector<int32_t>& ids)
{
	std::set<int32_t> shown;
	for(int32_t id : ids)
		if(!hidden(description, id))
			shown.insert(id);
	return shown;
}

std::vector<std::string> cycleLabels(const Description& description, int32_t id)
{
	std::vector<std::string> labels;
	const DescriptionEntry* entry = description.find(DescID(id));
	if(!entry)
		return labels;
	const BaseContainer cycle = entry->settings.GetContainer(DESC_CYCLE);
	for(const auto& [value, label] : cycle)
		labels.push_back(std::to_string(value) + "=" + label.GetString().GetStdString());
	return labels;
}

} // namespace

TEST_F(MaterialDescriptionTest, NewMaterialShowsTheDiffusePages)
{
	BaseMaterial* mat = newMaterial();
	const BaseContainer& data = *mat->GetDataInstance();
	EXPECT_EQ(data.GetInt32(MAT_TYPE), MAT_TYPE_DIFFUSE);
	EXPECT_EQ(data.GetInt32(MAT_PREVIEW_QUALITY), MAT_PREVIEW_MEDIUM);
	EXPECT_TRUE(data.GetBool(MAT_USE_ALBEDO));
	// It does not emit, has no bump and no displacement, yet their pages show.
	EXPECT_FALSE(data.GetBool(MAT_USE_EMISSION));
	EXPECT_FALSE(data.GetBool(MAT_USE_BUMP));
	EXPECT_FALSE(data.GetBool(MAT_USE_DISPLACEMENT));
	const Description description = describe(mat);
	EXPECT_EQ(shownOf(description, kPages), (std::set<int32_t>{6015, 6017, 6018, 6019}));
	EXPECT_FALSE(description.IsHidden(DescID(MAT_TYPE)));
	EXPECT_FALSE(description.IsHidden(DescID(MAT_PREVIEW_QUALITY)));
}

TEST_F(MaterialDescriptionTest, EachKindShowsItsSwitchesAndPages)
{
	const struct
	{
		int32_t kind;
		std::set<int32_t> switches;
		std::set<int32_t> pages;
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
	};
	for(const auto& k : kinds)
	{
		SCOPED_TRACE("kind " + std::to_string(k.kind));
		const Description description = describe(newMaterial(k.kind));
		EXPECT_EQ(shownOf(description, kSwitches), k.switches);
		EXPECT_EQ(shownOf(description, kPages), k.pages);
	}
}

TEST_F(MaterialDescriptionTest, OnlyTheSelectedSpectrumModeShows)
{
	const struct
	{
		int32_t mode_id;
		int32_t mode;
		std::vector<int32_t> groups;
		std::set<int32_t> shown;
	} cases[] = {
		{6210, 6104, {6211, 6212, 6213, 6214, 6215}, {6211}},
		{6210, 6105, {6211, 6212, 6213, 6214, 6215}, {6212}},
		{6217, 6107, {6218, 6219, 6220, 6221, 6222}, {6221}},
		{6217, 6108, {6218, 6219, 6220, 6221, 6222}, {6222}},
		{6057, 6104, {6058, 6059, 6238, 6239, 6240}, {6058}},
		{6057, 6106, {6058, 6059, 6238, 6239, 6240}, {6238}},
		{6057, 6108, {6058, 6059, 6238, 6239, 6240}, {6240}},
		{10001, 6104, {10002, 10006, 10009, 10014}, {10002}},
		{10001, 6107, {10002, 10006, 10009, 10014}, {10014}},
		{16001, 6105, {16002, 16006, 16009, 16014}, {16006}},
		{16001, 6106, {16002, 16006, 16009, 16014}, {16009}},
		// No table parameters: a generic channel in tabulated mode shows no group.
		{16001, 6108, {16002, 16006, 16009, 16014}, {}},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(std::to_string(c.mode_id) + " = " + std::to_string(c.mode));
		BaseMaterial* mat = newMaterial();
		mat->GetDataInstance()->SetInt32(c.mode_id, c.mode);
		EXPECT_EQ(shownOf(describe(mat), c.groups), c.shown);
	}
}

TEST_F(MaterialDescriptionTest, DependentEntriesFollowTheirValues)
{
	const std::vector<int32_t> watched = {6082, 6282, 6123, 6124, 6125, 6286, 6132, 6143, 6038, 6146, 6299, 6048,
		6090, 6281};
	const struct
	{
		const char* name;
		std::function<void(BaseContainer&)> set;
		int realtime;
		std::set<int32_t> shown;
	} cases[] = {
		{"defaults", [](BaseContainer&) {}, 0, {6123, 6038, 6146, 6048, 6090, 6281}},
		{"emission scale and IES on", [](BaseContainer& d) {
			d.SetBool(MAT_EMISSION_SCALE_ON, true);
			d.SetBool(MAT_IES_ON, true);
		}, 0, {6082, 6282, 6123, 6038, 6146, 6048, 6090, 6281}},
		{"dermis", [](BaseContainer& d) { d.SetInt32(MAT_MEDIUM_KIND, MAT_MEDIUM_DERMIS); }, 0,
			{6124, 6038, 6146, 6048, 6090, 6281}},
		{"epidermis", [](BaseContainer& d) { d.SetInt32(MAT_MEDIUM_KIND, MAT_MEDIUM_EPIDERMIS); }, 0,
			{6125, 6038, 6146, 6048, 6090, 6281}},
		{"atmosphere", [](BaseContainer& d) { d.SetInt32(MAT_MEDIUM_KIND, MAT_MEDIUM_ATMOSPHERE); }, 0,
			{6286, 6038, 6146, 6048, 6090, 6281}},
		{"unknown medium", [](BaseContainer& d) { d.SetInt32(MAT_MEDIUM_KIND, 7000); }, 0,
			{6123, 6038, 6146, 6048, 6090, 6281}},
		{"subsurface, uniform phase", [](BaseContainer& d) { d.SetBool(MAT_MEDIUM_SSS, true); }, 0,
			{6123, 6132, 6038, 6146, 6048, 6090, 6281}},
		{"subsurface, Henyey-Greenstein", [](BaseContainer& d) {
			d.SetBool(MAT_MEDIUM_SSS, true);
			d.SetInt32(MAT_PHASE_KIND, MAT_PHASE_HENYEY_GREENSTEIN);
		}, 0, {6123, 6132, 6143, 6038, 6146, 6048, 6090, 6281}},
		{"Henyey-Greenstein without subsurface", [](BaseContainer& d) {
			d.SetInt32(MAT_PHASE_KIND, MAT_PHASE_HENYEY_GREENSTEIN);
		}, 0, {6123, 6038, 6146, 6048, 6090, 6281}},
		{"specular mode without n-k", [](BaseContainer& d) { d.SetBool(MAT_PHONG_SPECULAR_MODE, true); }, 0,
			{6123, 6146, 6048, 6090, 6281}},
		{"n-k data", [](BaseContainer& d) {
			d.SetBool(MAT_PHONG_USE_NK, true);
			d.SetBool(MAT_PHONG_SPECULAR_MODE, true);
		}, 0, {6123, 6038, 6299, 6048, 6090, 6281}},
		{"realtime edition", [](BaseContainer& d) {
			d.SetBool(MAT_MEDIUM_SSS, true);
			d.SetBool(MAT_IES_ON, true);
		}, 1, {6123, 6038, 6146}},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		BaseMaterial* mat = newMaterial();
		c.set(*mat->GetDataInstance());
		realtime_edition = c.realtime;
		const Description description = describe(mat);
		realtime_edition = 0;
		EXPECT_EQ(shownOf(description, watched), c.shown);
	}
}

TEST_F(MaterialDescriptionTest, LayerCycleNamesTheVideoPostLayers)
{
	const std::vector<std::string> plain = {"0=Layer 1", "1=Layer 2", "2=Layer 3", "3=Layer 4", "4=Layer 5",
		"5=Layer 6", "6=Layer 7", "7=Layer 8", "8=Layer 9", "9=Layer 10"};
	BaseMaterial* mat = newMaterial();
	EXPECT_EQ(cycleLabels(describe(mat), MAT_EMISSION_LAYER), plain);

	registerPlainPlugins(PluginKind::VideoPost, {ID_VIDEO_POST});
	BaseVideoPost* post = BaseVideoPost::Alloc(ID_VIDEO_POST);
	ASSERT_NE(post, nullptr);
	doc->GetActiveRenderData()->InsertVideoPostLast(post);
	for(int32_t i = 0; i < 10; ++i)
		post->GetDataInstance()->SetString(1410 + i, String("L") + String::IntToString(i));
	post->GetDataInstance()->SetString(1410, String("Sun"));
	post->GetDataInstance()->SetString(1419, String());
	const std::vector<std::string> named = {"0=Layer 1: Sun", "1=Layer 2: L1", "2=Layer 3: L2", "3=Layer 4: L3",
		"4=Layer 5: L4", "5=Layer 6: L5", "6=Layer 7: L6", "7=Layer 8: L7", "8=Layer 9: L8", "9=Layer 10: "};
	EXPECT_EQ(cycleLabels(describe(mat), MAT_EMISSION_LAYER), named);

	// A switched-off video post names nothing.
	post->SetInfo(VIDEOPOST_DISABLED);
	EXPECT_EQ(cycleLabels(describe(mat), MAT_EMISSION_LAYER), plain);
}

TEST_F(MaterialDescriptionTest, GenericChannelsAreBuiltWithTheirRanges)
{
	const Description description = describe(newMaterial(MAT_TYPE_COATING));
	const struct
	{
		int32_t id;
		int32_t dtype;
		int32_t parent;
		const char* name;
		double min, max, step, min_slider, max_slider;
	} entries[] = {
		{10002, DTYPE_GROUP, 6308, "RGB", 0, 0, 0, 0, 0},
		{10003, DTYPE_COLOR, 10002, "Colour", 0, 0, 0, 0, 0},
		{10004, DTYPE_REAL, 10002, "Scale", 0, 100, 0.01, 0, 100},
		{10005, DTYPE_REAL, 10002, "Gamma", 0, 100, 0.1, 0.4, 5},
		{10007, DTYPE_REAL, 10006, "Temperature", 0, 40000, 10, 0, 10000},
		{10008, DTYPE_REAL, 10006, "Gain", 0, 1000000, 0.1, 0, 10},
		{10010, DTYPE_REAL, 10009, "Peak Min", 400, 700, 10, 400, 700},
		{10011, DTYPE_REAL, 10009, "Peak Width", 0, 500, 10, 0, 500},
		{10013, DTYPE_REAL, 10009, "Base Value", 0, 1000000, 1, 0, 1000000},
		{16015, DTYPE_REAL, 16014, "Value", 0, 1000000, 0.1, 0, 10},
		{16016, DTYPE_BASELISTLINK, 6323, "Texture", 0, 0, 0, 0, 0},
		{16018, DTYPE_REAL, 6323, "Texture A", -1000000, 1000000, 0.1, -1, 1},
		{11021, DTYPE_REAL, 6309, "Value (\xC2\xB5m)", 0, 1000000, 1, 0, 5000},
		{12021, DTYPE_REAL, 6312, "Value", 0, 1, 0.01, 0, 1},
		{13021, DTYPE_REAL, 6320, "Value", 0, 1, 0.01, 0, 1},
		{14021, DTYPE_REAL, 6321, "Value", 0, 1, 0.01, 0, 1},
		{15021, DTYPE_REAL, 6322, "Value", 0, 1, 0.01, 0, 1},
		{17021, DTYPE_REAL, 6324, "Value", 0, 1, 0.01, 0, 1},
		{17017, DTYPE_REAL, 6324, "Texture Gamma", 0, 100, 0.1, 0.4, 5},
		{11022, DTYPE_BOOL, 6309, "Smooth", 0, 0, 0, 0, 0},
	};
	for(const auto& e : entries)
	{
		SCOPED_TRACE(e.id);
		const DescriptionEntry* entry = description.find(DescID(e.id));
		ASSERT_NE(entry, nullptr);
		EXPECT_EQ(entry->dtype, e.dtype);
		EXPECT_EQ(entry->parent, e.parent);
		EXPECT_EQ(entry->settings.GetString(DESC_NAME), String(e.name));
		if(e.dtype != DTYPE_REAL)
			continue;
		EXPECT_EQ(entry->settings.GetFloat(DESC_MIN), e.min);
		EXPECT_EQ(entry->settings.GetFloat(DESC_MAX), e.max);
		EXPECT_EQ(entry->settings.GetFloat(DESC_STEP), e.step);
		EXPECT_EQ(entry->settings.GetFloat(DESC_MINSLIDER), e.min_slider);
		EXPECT_EQ(entry->settings.GetFloat(DESC_MAXSLIDER), e.max_slider);
	}
	EXPECT_EQ(cycleLabels(description, 10001),
		(std::vector<std::string>{"6104=RGB", "6105=Blackbody", "6106=Peak", "6107=Uniform", "6108=Tabulated"}));
	// The spectrum channels have no constant value, the real ones no mode.
	EXPECT_EQ(description.find(DescID(10021)), nullptr);
	EXPECT_EQ(description.find(DescID(11001)), nullptr);
}

TEST_F(MaterialDescriptionTest, NkChoiceIsMigratedAndKeptInTheTable)
{
	EXPECT_EQ(NkFileCount(), 203);
	EXPECT_STREQ(NkFileName(39), "Au.nk");
	EXPECT_EQ(NkFileName(203), nullptr);
	EXPECT_EQ(NkFileName(-1), nullptr);
	EXPECT_EQ(FindNkFile(String("SIN_BF5.nk")), FindNkFile(String("sin_bf5.NK")));
	ASSERT_GE(FindNkFile(String("sin_bf5.NK")), 0);
	EXPECT_STREQ(NkFileName(FindNkFile(String("sin_bf5.NK"))), "sin_bf5.NK");

	BaseMaterial* mat = newMaterial(MAT_TYPE_PHONG);
	BaseContainer* data = mat->GetDataInstance();
	data->SetString(MAT_PHONG_NK_NAME, String("au.nk"));
	const Description description = describe(mat);
	EXPECT_EQ(data->GetInt32(MAT_PHONG_NK_FILE), 39);
	EXPECT_EQ(data->GetDataPointer(MAT_PHONG_NK_NAME), nullptr);
	const std::vector<std::string> labels = cycleLabels(description, MAT_PHONG_NK_FILE);
	ASSERT_EQ(labels.size(), 203u);
	EXPECT_EQ(labels[0], "0=Ag.nk");
	EXPECT_EQ(labels[1], "1=Al.nk");
	EXPECT_EQ(labels[39], "39=Au.nk");
	EXPECT_EQ(labels[202], "202=Zrsi2.nk");

	// A name the table lacks is dropped and the index stays.
	data->SetString(MAT_PHONG_NK_NAME, String("Unobtainium.nk"));
	describe(mat);
	EXPECT_EQ(data->GetInt32(MAT_PHONG_NK_FILE), 39);
	EXPECT_EQ(data->GetDataPointer(MAT_PHONG_NK_NAME), nullptr);

	// Out of range goes back to 0; the check admits one index past the table.
	const int32_t cases[][2] = {{500, 0}, {-1, 0}, {204, 0}, {203, 203}, {202, 202}, {0, 0}};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c[0]);
		data->SetInt32(MAT_PHONG_NK_FILE, c[0]);
		describe(mat);
		EXPECT_EQ(data->GetInt32(MAT_PHONG_NK_FILE), c[1]);
	}
}

TEST_F(MaterialDescriptionTest, LinkedShadersDisableWhatTheyOverride)
{
	registerPlainPlugins(PluginKind::Shader, {1023863});
	// Each id with its enabling for no shader, one of the plug-in's own
	// shaders and a foreign shader, linked in 6118, 6052, 10016 and 11016.
	const struct
	{
		int32_t id;
		bool none, own, foreign;
	} rows[] = {
		{6081, true, false, false},
		{6114, true, false, false},
		{6260, true, false, false},
		{6261, false, true, true},
		{6119, false, false, true},
		{6053, false, false, true},
		{6291, false, false, true},
		{10001, true, false, false},
		{10003, true, false, false},
		{10015, true, false, false},
		{10017, false, false, true},
		{10020, false, false, true},
		{11021, true, false, false},
		{11022, false, false, true},
		{11017, false, false, true},
		// Linked elsewhere: unaffected.
		{6040, true, true, true},
		{16003, true, true, true},
	};
	const int32_t links[] = {6118, 6052, 10016, 11016};
	for(int variant = 0; variant < 3; ++variant)
	{
		SCOPED_TRACE(variant == 0 ? "no shader" : variant == 1 ? "own shader" : "foreign shader");
		BaseMaterial* mat = newMaterial();
		for(int32_t link : links)
		{
			if(variant == 0)
				continue;
			BaseShader* shader = BaseShader::Alloc(variant == 1 ? 1023863 : Xbitmap);
			ASSERT_NE(shader, nullptr);
			mat->InsertShader(shader);
			mat->GetDataInstance()->SetLink(link, shader);
		}
		for(const auto& row : rows)
		{
			const bool expected = variant == 0 ? row.none : variant == 1 ? row.own : row.foreign;
			EXPECT_EQ(mat->IsParameterEnabled(DescID(row.id)), expected) << row.id;
		}
	}
	// The medium's index and dispersion do not apply to a transmitter.
	BaseMaterial* transmitter = newMaterial(MAT_TYPE_DIFFUSE_TRANSMITTER);
	EXPECT_FALSE(transmitter->IsParameterEnabled(DescID(MAT_MEDIUM_IOR)));
	EXPECT_FALSE(transmitter->IsParameterEnabled(DescID(MAT_MEDIUM_CAUCHY_B)));
	BaseMaterial* glass = newMaterial(MAT_TYPE_SPECULAR);
	EXPECT_TRUE(glass->IsParameterEnabled(DescID(MAT_MEDIUM_IOR)));
	EXPECT_TRUE(glass->IsParameterEnabled(DescID(MAT_MEDIUM_CAUCHY_B)));
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
	EXPECT_FALSE(flags & DESCFLAGS_DESC_LOADED);
	EXPECT_EQ(mat->GetData(), before);
}
