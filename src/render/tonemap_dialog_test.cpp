// The tone mapping dialog against the shared render state, with scene nodes
// standing in for a running render's.
#include "render/render_state.h"
#include "render/tonemap_dialog.h"

#include "c4d/plugin_registry.h"
#include "host/plugin_globals.h"
#include "scene/render_setting_values.h"
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_tonemapping.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>

namespace
{

using Velorn::Reference;
using Velorn::SceneNodeRenderSettings;
using Velorn::SceneNodeRoot;
using Velorn::SceneNodeTonemapping;

// The nodes of a render: Reinhard (2, 1.5, 3) with a response path, a white
// point, and layers of the given names.
struct RenderScene
{
	Reference<SceneNodeRoot> root = new SceneNodeRoot();
	Reference<SceneNodeTonemapping> tonemap = new SceneNodeTonemapping(2.0, 1.5, 3.0);
	Reference<SceneNodeRenderSettings> settings = new SceneNodeRenderSettings();

	explicit RenderScene(const std::vector<std::string>& layers)
	{
		tonemap->response_function_path = "data\\Camera_Response_Functions\\DSCS315_3.TXT";
		tonemap->film_iso = 100;
		tonemap->ev_adjust = -1.5;
		settings->setWhitePoint(0.3, 0.31);
		for(size_t i = 0; i < layers.size(); ++i)
			settings->setLayerName(i, Velorn::String(layers[i]));
		root->addChildNode(Reference<Velorn::SceneNode>(tonemap.getPointer()));
		root->addChildNode(Reference<Velorn::SceneNode>(settings.getPointer()));
	}

	// Hands the scene to the dialog as a render does when it starts.
	void start()
	{
		RenderState& state = renderState();
		std::lock_guard<std::mutex> guard(state.lock);
		state.root = root;
		state.new_render = 1;
	}

	bool marked() const { return tonemap->testFlags(NODE_CHANGED) && settings->testFlags(NODE_CHANGED); }
	void unmark()
	{
		tonemap->setFlags(0);
		settings->setFlags(0);
	}
};

void expectNear(const Velorn::Vec3d& actual, const Velorn::Vec3d& expected, double tolerance)
{
	EXPECT_NEAR(actual.x, expected.x, tolerance);
	EXPECT_NEAR(actual.y, expected.y, tolerance);
	EXPECT_NEAR(actual.z, expected.z, tolerance);
}

class TonemapDialogTest : public testing::Test
{
protected:
	void SetUp() override
	{
		renderState().clear();
		realtime_edition = 0;
	}
	void TearDown() override
	{
		dialog.Close();
		renderState().clear();
		realtime_edition = 0;
	}

	// What a user types into a gadget; empty when the dialog took it.
	std::string set(int32_t id, const std::string& value)
	{
		return dialog.TakeAction(DialogAction::set(id, String(value))).GetStdString();
	}
	double real(int32_t id) const
	{
		double v = -1;
		EXPECT_TRUE(dialog.GetFloat(id, v)) << id;
		return v;
	}
	int32_t whole(int32_t id) const
	{
		int32_t v = -1;
		EXPECT_TRUE(dialog.GetInt32(id, v)) << id;
		return v;
	}
	// The dialog's next message, as its timer or any event brings one.
	void message()
	{
		BaseContainer msg(BFM_TIMER_MESSAGE), result;
		dialog.Message(msg, result);
	}
	std::vector<int32_t> layerGroups() const
	{
		std::vector<int32_t> ids;
		for(const DialogItem& item : dialog.GetItems())
			if(item.parent == TM_LAYER_LIST)
				ids.push_back(item.id);
		return ids;
	}

	TonemapDialog dialog;
};

TEST_F(TonemapDialogTest, WithoutARenderShowsTheDefaultsAndChangesGoNowhere)
{
	ASSERT_TRUE(dialog.Open(DLG_TYPE_ASYNC));
	EXPECT_EQ(whole(TM_TYPE), TM_TYPE_REINHARD);
	// Each gadget's value, slider minimum and maximum, step, and hard
	// minimum and maximum.
	using Numbers = std::array<double, 6>;
	const std::pair<int32_t, Numbers> reals[] = {
		{TM_LINEAR_SCALE, {1.0, 0, 10, 0.1, 0, 1000000}},
		{TM_PRE_SCALE, {4.0, 0, 10, 0.1, 0, 100000}},
		{TM_POST_SCALE, {1.0, 0, 10, 0.1, 0, 100000}},
		{TM_BURN, {6.0, 1.001, 10, 0.1, 1.001, 100000}},
		{TM_FILM_ISO, {200, 0.001, 200, 1, 0.001, 100000}},
		{TM_EV_ADJUST, {4.0, -10, 10, 0.1, -100000, 100000}},
		{TM_WHITE_X, {0.333, 0.24, 0.46, 0.01, 0.24, 0.46}},
		{TM_WHITE_Y, {0.333, 0.24, 0.46, 0.01, 0.24, 0.46}},
	};
	for(const auto& e : reals)
	{
		SCOPED_TRACE(e.first);
		const DialogItem* item = dialog.FindItem(e.first);
		ASSERT_NE(item, nullptr);
		EXPECT_EQ((Numbers{real(e.first), item->sliderMin, item->sliderMax, item->step, item->min, item->max}), e.second);
	}
	EXPECT_EQ(whole(TM_RESPONSE), 0);
	EXPECT_EQ(whole(TM_WHITE_PRESET), 0);
	const DialogItem* response = dialog.FindItem(TM_RESPONSE);
	ASSERT_EQ(response->children.size(), 58u);
	EXPECT_EQ(response->children[0].second, String("Advantix-100CD.txt"));
	EXPECT_EQ(response->children[13].second, String("agfacolor-futuraII-400C.txt"));
	EXPECT_EQ(response->children[28].second, String("dscs315.txt"));
	EXPECT_EQ(response->children[57], std::make_pair(57, String("Portra-800CD.txt")));
	EXPECT_EQ(layerGroups(), std::vector<int32_t>{});

	// Every gadget takes a change, and nothing is written anywhere.
	for(int32_t id : {TM_LINEAR_SCALE, TM_PRE_SCALE, TM_BURN, TM_WHITE_X})
		EXPECT_EQ(set(id, "1.2"), "");
	EXPECT_EQ(set(TM_TYPE, "6014"), "");
	EXPECT_EQ(set(TM_RESPONSE, "3"), "");
	EXPECT_EQ(set(TM_WHITE_PRESET, "6025"), "");
	// The hard ranges hold what is typed.
	EXPECT_EQ(set(TM_WHITE_Y, "0.9"), "");
	EXPECT_EQ(real(TM_WHITE_Y), 0.46);
	EXPECT_EQ(set(TM_BURN, "1"), "");
	EXPECT_EQ(real(TM_BURN), 1.001);
	EXPECT_EQ(set(TM_TYPE, "6013"), "item 6007 has no entry \"6013\"");
}

TEST_F(TonemapDialogTest, ReadsTheRenderNodesAndWritesEveryChangeWithItsMark)
{
	RenderScene scene({"Layer 0", "Sky"});
	scene.start();
	ASSERT_TRUE(dialog.Open(DLG_TYPE_ASYNC));
	EXPECT_EQ(whole(TM_TYPE), TM_TYPE_REINHARD);
	const std::pair<int32_t, double> shown[] = {{TM_PRE_SCALE, 2.0}, {TM_POST_SCALE, 1.5}, {TM_BURN, 3.0},
		{TM_FILM_ISO, 100}, {TM_EV_ADJUST, -1.5}, {TM_WHITE_X, 0.3}, {TM_WHITE_Y, 0.31}};
	for(const auto& gadget : shown)
		EXPECT_EQ(real(gadget.first), gadget.second) << gadget.first;
	// Back slashes and case do not matter.
	EXPECT_EQ(whole(TM_RESPONSE), 30);
	ASSERT_EQ(layerGroups(), (std::vector<int32_t>{TM_LAYER_GROUP, TM_LAYER_GROUP + 1}));
	EXPECT_EQ(dialog.FindItem(TM_LAYER_GROUP + 1)->label, String("Sky"));
	bool on = false;
	Vector colour;
	double brightness = 0;
	EXPECT_TRUE(dialog.GetBool(TM_LAYER_ENABLED + 1, on));
	EXPECT_TRUE(on);
	EXPECT_TRUE(dialog.GetColorField(TM_LAYER_COLOUR + 1, colour, brightness));
	EXPECT_EQ(colour, Vector(1, 1, 1));
	EXPECT_EQ(brightness, 1.0);
	EXPECT_EQ(dialog.FindItem(TM_LAYER_COLOUR + 1)->maxBrightness, 5.0);
	EXPECT_FALSE(scene.marked());

	// Each change goes to its field at once, and marks both nodes.
	struct Change
	{
		int32_t id;
		const char* value;
		std::function<bool()> written;
	};
	const Change changes[] = {
		{TM_PRE_SCALE, "5", [&] { return scene.tonemap->pre_scale == 5; }},
		{TM_POST_SCALE, "0.5", [&] { return scene.tonemap->post_scale == 0.5; }},
		{TM_BURN, "7", [&] { return scene.tonemap->burn == 7; }},
		{TM_LINEAR_SCALE, "3", [&] { return scene.tonemap->linear_scale == 3; }},
		{TM_FILM_ISO, "50", [&] { return scene.tonemap->film_iso == 50; }},
		{TM_EV_ADJUST, "2.5", [&] { return scene.tonemap->ev_adjust == 2.5; }},
		{TM_TYPE, "6012", [&] { return scene.tonemap->tone_mapping_type == 1000; }},
		{TM_TYPE, "6014", [&] { return scene.tonemap->tone_mapping_type == 1002; }},
		{TM_TYPE, "6008", [&] { return scene.tonemap->tone_mapping_type == 1001; }},
		{TM_RESPONSE, "45",
			[&] { return scene.tonemap->response_function_path == "data/camera_response_functions/FP2900Z.txt"; }},
		{TM_WHITE_X, "0.35", [&] { return scene.settings->white_point->x == 0.35; }},
	};
	for(const Change& change : changes)
	{
		SCOPED_TRACE(testing::Message() << change.id << " " << change.value);
		scene.unmark();
		EXPECT_EQ(set(change.id, change.value), "");
		EXPECT_TRUE(change.written());
		EXPECT_TRUE(scene.marked());
	}
}

TEST_F(TonemapDialogTest, WhitePointPresetsAndHandEditsKeepEachOtherInStep)
{
	RenderScene scene({"Layer 0"});
	scene.start();
	ASSERT_TRUE(dialog.Open(DLG_TYPE_ASYNC));
	struct Preset
	{
		const char* entry;
		double x, y;
	};
	// 6023 and every entry without a pair of its own (none among them) give
	// the same point.
	const Preset presets[] = {{"6021", 0.34546, 0.35834}, {"6025", 0.44712, 0.4071}, {"6028", 0.28474, 0.29302},
		{"6023", 0.31234, 0.3289}, {"0", 0.31234, 0.3289}, {"6031", 0.38042, 0.37674}};
	for(const Preset& p : presets)
	{
		SCOPED_TRACE(p.entry);
		EXPECT_EQ(set(TM_WHITE_PRESET, p.entry), "");
		EXPECT_EQ(real(TM_WHITE_X), p.x);
		EXPECT_EQ(real(TM_WHITE_Y), p.y);
		EXPECT_EQ(scene.settings->white_point->x, p.x);
		EXPECT_EQ(scene.settings->white_point->y, p.y);
	}
	double x, y;
	whitePointOfPreset(4711, x, y);
	EXPECT_EQ(std::make_pair(x, y), std::make_pair(0.31234, 0.3289));

	// A point typed by hand is no preset.
	for(int32_t id : {TM_WHITE_X, TM_WHITE_Y})
	{
		EXPECT_EQ(set(TM_WHITE_PRESET, "6021"), "");
		EXPECT_EQ(set(id, "0.3"), "");
		EXPECT_EQ(whole(TM_WHITE_PRESET), 0);
	}
	// The last edit: y typed over the point of 6021.
	EXPECT_EQ(scene.settings->white_point->x, 0.34546);
	EXPECT_EQ(scene.settings->white_point->y, 0.3);
}

TEST_F(TonemapDialogTest, AResponsePathOutsideTheTableKeepsTheEntryUntilTheNextChange)
{
	RenderScene scene({"Layer 0"});
	scene.start();
	ASSERT_TRUE(dialog.Open(DLG_TYPE_ASYNC));
	EXPECT_EQ(set(TM_RESPONSE, "5"), "");
	scene.tonemap->response_function_path = "my/own_curve.txt";
	scene.start();
	message();
	EXPECT_EQ(whole(TM_RESPONSE), 5);
	EXPECT_EQ(scene.tonemap->response_function_path, "my/own_curve.txt");
	// Any change writes every gadget back, the entry shown included.
	EXPECT_EQ(set(TM_EV_ADJUST, "1"), "");
	EXPECT_EQ(scene.tonemap->response_function_path, "data/camera_response_functions/agfachrome-rsx2-050CD.txt");
}

TEST_F(TonemapDialogTest, LayerGadgetsSetTheLayerScalesInXYZ)
{
	RenderScene scene({"Sun", "Sky"});
	scene.start();
	ASSERT_TRUE(dialog.Open(DLG_TYPE_ASYNC));
	// White at brightness 1 passes through XYZ and comes back as 1.
	EXPECT_EQ(set(TM_LAYER_COLOUR + 0, "1,1,1,1"), "");
	expectNear(scene.settings->layer_settings[0]->xyz, Velorn::Vec3d(1, 1, 1), 1e-5);
	EXPECT_EQ(scene.settings->layer_settings[0]->name, "Sun");

	// Red at brightness 2: w = M^-1 (1, 1, 1) has the red component
	// 3.2404542 - 1.5371385 - 0.4985314 = 1.2047843; raised to 1/2.2 and back
	// to 2.2 it stays, so the scale is 2 * 1.2047843 times M's first column.
	EXPECT_EQ(set(TM_LAYER_COLOUR + 1, "1,0,0,2"), "");
	const double scale = 2 * 1.2047843;
	expectNear(scene.settings->layer_settings[1]->xyz,
		Velorn::Vec3d(scale * 0.4124564, scale * 0.2126729, scale * 0.0193339), 1e-4);

	// Unticked, a layer gives no light whatever its colour.
	EXPECT_EQ(set(TM_LAYER_ENABLED + 1, "off"), "");
	EXPECT_EQ(scene.settings->layer_settings[1]->xyz, Velorn::Vec3d(0, 0, 0));
	EXPECT_NEAR(scene.settings->layer_settings[0]->xyz.y, 1, 1e-5);
	// The brightness is held at 5.
	EXPECT_EQ(set(TM_LAYER_COLOUR + 0, "1,1,1,9"), "");
	EXPECT_NEAR(scene.settings->layer_settings[0]->xyz.y, 5, 5e-5);
	EXPECT_EQ(set(TM_LAYER_COLOUR + 0, "1,1"), "\"1,1\" is not r,g,b or r,g,b,brightness");

	// The realtime edition shows no layers and leaves them alone.
	realtime_edition = 1;
	scene.start();
	message();
	EXPECT_EQ(layerGroups(), std::vector<int32_t>{});
	EXPECT_EQ(set(TM_PRE_SCALE, "3"), "");
	EXPECT_EQ(scene.settings->layer_settings[1]->xyz, Velorn::Vec3d(0, 0, 0));
}

TEST_F(TonemapDialogTest, ANewRenderRebuildsTheLayersAtTheNextMessage)
{
	ASSERT_TRUE(dialog.Open(DLG_TYPE_ASYNC));
	EXPECT_EQ(dialog.GetTimerInterval(), 100);
	RenderScene three({"a", "b", "c"});
	three.start();
	EXPECT_EQ(layerGroups(), std::vector<int32_t>{});
	message();
	EXPECT_EQ(layerGroups(), (std::vector<int32_t>{TM_LAYER_GROUP, TM_LAYER_GROUP + 1, TM_LAYER_GROUP + 2}));
	EXPECT_EQ(renderState().new_render, 0);
	EXPECT_EQ(real(TM_PRE_SCALE), 2.0);
	const int32_t changes = dialog.GetLayoutChanges();

	// Without a new render a message changes nothing.
	EXPECT_EQ(set(TM_LAYER_ENABLED + 2, "off"), "");
	message();
	EXPECT_EQ(dialog.GetLayoutChanges(), changes);
	bool on = true;
	EXPECT_TRUE(dialog.GetBool(TM_LAYER_ENABLED + 2, on));
	EXPECT_FALSE(on);

	// The next render has one layer: its gadgets alone, fresh, and the
	// values of its nodes.
	RenderScene one({"only"});
	one.tonemap->pre_scale = 8;
	one.start();
	message();
	EXPECT_EQ(layerGroups(), std::vector<int32_t>{TM_LAYER_GROUP});
	EXPECT_EQ(dialog.FindItem(TM_LAYER_ENABLED + 2), nullptr);
	EXPECT_EQ(dialog.GetLayoutChanges(), changes + 1);
	EXPECT_EQ(real(TM_PRE_SCALE), 8.0);

	// The render ends: the next change goes nowhere.
	renderState().clear();
	one.unmark();
	EXPECT_EQ(set(TM_PRE_SCALE, "1"), "");
	EXPECT_EQ(one.tonemap->pre_scale, 8.0);
	EXPECT_FALSE(one.tonemap->testFlags(NODE_CHANGED));
}

TEST_F(TonemapDialogTest, TheCommandOpensTheDialogBesideTheApplication)
{
	PluginRegistry::get().remove(ID_TONEMAPPING);
	ASSERT_TRUE(RegisterTonemapCommand());
	const PluginRecord* record = PluginRegistry::get().find(ID_TONEMAPPING);
	ASSERT_NE(record, nullptr);
	EXPECT_EQ(record->name, String("Velorn Interactive Tonemapping Dialog"));
	EXPECT_EQ(record->help, String("Velorn Tonemapping"));
	EXPECT_EQ(record->icon.GetFile().GetString(), String("tonemapping.tif"));
	EXPECT_EQ(record->command->GetState(nullptr), CMD_ENABLED);
	auto* command = static_cast<TonemapCommand*>(record->command.get());
	ASSERT_TRUE(command->Execute(nullptr));
	EXPECT_TRUE(command->dialog().IsOpen());
	EXPECT_FALSE(command->dialog().IsModal());
	EXPECT_EQ(command->dialog().GetOpenWidth(), 500);
	EXPECT_EQ(command->dialog().GetOpenHeight(), 100);
	command->dialog().Close();
	EXPECT_TRUE(command->RestoreLayout(nullptr));
	EXPECT_TRUE(command->dialog().IsOpen());
	command->dialog().Close();
	PluginRegistry::get().remove(ID_TONEMAPPING);
}

} // namespace
