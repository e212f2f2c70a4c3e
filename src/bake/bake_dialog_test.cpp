#include "bake/bake_commands.h"
#include "bake/bake_dialog.h"
#include "bake/bake_thread.h"

#include "c4d/base_bitmap.h"
#include "c4d/base_document.h"
#include "c4d/base_material.h"
#include "c4d/base_shader.h"
#include "c4d/command_runner.h"
#include "c4d/console.h"
#include "c4d/dialog_script.h"
#include "c4d/plugin_registry.h"
#include "c4d/plugin_test_helpers.h"
#include "c4d/polygon_object.h"
#include "c4d/resources.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"
#include "host/plugin_ids.h"
#include "materials/material_ids.h"
#include "shaders/shader_ids.h"
#include "support/file_utils.h"
#include "support/platform.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <string>

namespace
{

const Vector colour(0.2, 0.4, 0.6);

class BakeTest : public testing::Test
{
protected:
	void SetUp() override
	{
		PluginRegistry::get().clear();
		registerPlainPlugins(PluginKind::Material, {ID_VELORN_MATERIAL});
		registerPlainPlugins(PluginKind::Shader, {ID_VSL_SHADER});
		DialogScript::get().clear();
		HostConsole::get().clear();
		doc = BaseDocument::Alloc();
	}

	void TearDown() override
	{
		CloseOpenDialogs();
		dialog.reset();
		BaseDocument::Free(doc);
		DialogScript::get().clear();
		PluginRegistry::get().clear();
	}

	// A one-quad polygon object whose UVW tag spans the whole UV square,
	// selected, at the top of the document.
	PolygonObject* addQuad(bool withUvw = true)
	{
		PolygonObject* op = PolygonObject::Alloc(4, 1);
		op->SetName(String("Quad"));
		Vector* points = op->GetPointW();
		points[0] = Vector(-1, 0, -1);
		points[1] = Vector(-1, 0, 1);
		points[2] = Vector(1, 0, 1);
		points[3] = Vector(1, 0, -1);
		op->GetPolygonW()[0] = CPolygon(0, 1, 2, 3);
		if(withUvw)
		{
			UVWTag* uvw = UVWTag::Alloc(1);
			uvw->Set(0, UVWStruct{Vector(0, 0, 0), Vector(0, 1, 0), Vector(1, 1, 0), Vector(1, 0, 0)});
			op->InsertTag(uvw);
		}
		doc->InsertObject(op, nullptr, nullptr);
		return op;
	}

	// A plug-in material of the kind, its channels' switches off.
	BaseMaterial* addMaterial(int32_t kind, const char* name = "Velorn")
	{
		BaseMaterial* mat = BaseMaterial::Alloc(ID_VELORN_MATERIAL);
		mat->SetName(String(name));
		mat->GetDataInstance()->SetInt32(MAT_TYPE, kind);
		doc->InsertMaterial(mat);
		return mat;
	}

	// Puts a shader of the type into the channel's link, the channel
	// switched on or off.
	static void addChannel(BaseMaterial* mat, int32_t use, int32_t link, bool on, int32_t type = Xcolor)
	{
		BaseShader* sh = BaseShader::Alloc(type);
		ASSERT_NE(sh, nullptr);
		sh->GetDataInstance()->SetVector(COLORSHADER_COLOR, colour);
		mat->InsertShader(sh);
		mat->GetDataInstance()->SetLink(link, sh);
		mat->GetDataInstance()->SetBool(use, on);
	}

	// A texture tag of mat on op, after op's other tags, selected.
	static TextureTag* addTag(BaseObject* op, BaseMaterial* mat, int32_t projection = TEXTURETAG_PROJECTION_UVW)
	{
		TextureTag* tag = TextureTag::Alloc();
		tag->SetMaterial(mat);
		tag->GetDataInstance()->SetInt32(TEXTURETAG_PROJECTION, projection);
		BaseTag* last = op->GetFirstTag();
		while(last && last->GetNext())
			last = last->GetNext();
		op->InsertTag(tag, last);
		tag->SetBit(BIT_ACTIVE);
		return tag;
	}

	BakeDialog& open(TextureTag* tag)
	{
		dialog = std::make_unique<BakeDialog>();
		dialog->SetTarget(doc, tag);
		EXPECT_TRUE(dialog->Open(DLG_TYPE_ASYNC));
		return *dialog;
	}

	// Types the values in, presses "Bake Shaders" and runs the dialog until
	// the bake has ended.
	void bake(const std::map<int32_t, std::string>& values)
	{
		for(const auto& [id, value] : values)
			DialogScript::get().pushAction(DialogAction::set(id, String(value)));
		DialogScript::get().pushAction(DialogAction::press(IDC_BAKE_SHADERS));
		RunOpenDialogs(20000);
		ASSERT_NE(dialog->GetThread(), nullptr);
		EXPECT_FALSE(dialog->GetThread()->IsRunning());
	}

	static bool exists(const std::string& path) { return Velorn::FileUtils::fileExists(path); }

	BaseDocument* doc = nullptr;
	std::unique_ptr<BakeDialog> dialog;
	VelornTest::TempDir dir;
};

bool boxOf(const BakeDialog& dlg, int32_t id)
{
	bool on = false;
	EXPECT_TRUE(dlg.GetBool(id, on));
	return on;
}

// The label of the item: its own, or for a number field the text before it.
std::string labelOf(const BakeDialog& dlg, int32_t id)
{
	const std::vector<DialogItem>& items = dlg.GetItems();
	for(size_t i = 0; i < items.size(); ++i)
		if(items[i].id == id)
			return (items[i].label.Content() || i == 0 ? items[i].label : items[i - 1].label).GetStdString();
	return "(no item)";
}

TEST_F(BakeTest, DialogHasItsItemsDefaultsAndRanges)
{
	PolygonObject* op = addQuad();
	BaseMaterial* mat = addMaterial(MAT_TYPE_PHONG);
	addChannel(mat, MAT_USE_ALBEDO, MAT_ALBEDO_LINK, true);
	// Switched off, or without a shader: the box starts off.
	addChannel(mat, MAT_USE_BUMP, MAT_BUMP_LINK, false);
	mat->GetDataInstance()->SetBool(MAT_USE_EMISSION, true);
	addChannel(mat, MAT_USE_EXPONENT, MAT_EXPONENT_LINK, true);
	BakeDialog& dlg = open(addTag(op, mat));

	EXPECT_EQ(dlg.GetTitle().GetStdString(), "Bake Dialog");
	struct Item
	{
		int32_t id;
		DialogItem::Kind kind;
		const char* label;
		int32_t group;
	};
	const Item items[] = {
		{IDC_BAKE_CHANNELS_GROUP, DialogItem::Kind::Group, "Channels", 0},
		{10002, DialogItem::Kind::CheckBox, "Albedo", IDC_BAKE_CHANNELS_GROUP},
		{10007, DialogItem::Kind::CheckBox, "Sigma", IDC_BAKE_CHANNELS_GROUP},
		{10006, DialogItem::Kind::CheckBox, "Exponent", IDC_BAKE_CHANNELS_GROUP},
		{10004, DialogItem::Kind::CheckBox, "Bump", IDC_BAKE_CHANNELS_GROUP},
		{10005, DialogItem::Kind::CheckBox, "Displacement", IDC_BAKE_CHANNELS_GROUP},
		{10003, DialogItem::Kind::CheckBox, "Emission", IDC_BAKE_CHANNELS_GROUP},
		{10008, DialogItem::Kind::CheckBox, "Blend", IDC_BAKE_CHANNELS_GROUP},
		{IDC_BAKE_SETTINGS_GROUP, DialogItem::Kind::Group, "Bake Settings", 0},
		{10017, DialogItem::Kind::Filename, "Save to...", IDC_BAKE_SETTINGS_GROUP},
		{10018, DialogItem::Kind::Button, "...", IDC_BAKE_SETTINGS_GROUP},
		{10011, DialogItem::Kind::Number, "Res X", IDC_BAKE_SETTINGS_GROUP},
		{10012, DialogItem::Kind::Number, "Res Y", IDC_BAKE_SETTINGS_GROUP},
		{10013, DialogItem::Kind::Number, "Pixel Border", IDC_BAKE_SETTINGS_GROUP},
		{10020, DialogItem::Kind::Number, "Super Sampling", IDC_BAKE_SETTINGS_GROUP},
		{10001, DialogItem::Kind::Button, "Bake Shaders", 0},
	};
	for(const Item& item : items)
	{
		SCOPED_TRACE(item.id);
		const DialogItem* found = dlg.FindItem(item.id);
		ASSERT_NE(found, nullptr);
		EXPECT_EQ(found->kind, item.kind);
		EXPECT_EQ(labelOf(dlg, item.id), item.label);
		EXPECT_EQ(found->parent, item.group);
	}

	const std::map<int32_t, bool> boxes = {{10002, true}, {10007, false}, {10006, true}, {10004, false},
		{10005, false}, {10003, false}, {10008, false}};
	for(const auto& [id, on] : boxes)
	{
		SCOPED_TRACE(id);
		EXPECT_EQ(boxOf(dlg, id), on);
	}
	struct Number
	{
		int32_t id;
		int32_t value;
		double min;
	};
	for(const Number& n : {Number{10011, 1024, 1}, Number{10012, 1024, 1}, Number{10013, 5, 0}, Number{10020, 0, 0}})
	{
		SCOPED_TRACE(n.id);
		int32_t value = -1;
		dlg.GetInt32(n.id, value);
		EXPECT_EQ(value, n.value);
		EXPECT_EQ(dlg.FindItem(n.id)->min, n.min);
	}
	Filename file(String("not empty"));
	dlg.GetFilename(10017, file);
	EXPECT_FALSE(file.Content());
}

TEST_F(BakeTest, KindsSwitchOffWhatTheyDoNotHave)
{
	struct Case
	{
		int32_t kind;
		bool exponent;
		bool sigma;
	};
	const Case cases[] = {
		{MAT_TYPE_DIFFUSE, false, false},
		{MAT_TYPE_OREN_NAYAR, false, true},
		{MAT_TYPE_PHONG, true, false},
		{MAT_TYPE_GLOSSY_TRANSPARENT, true, true},
	};
	PolygonObject* op = addQuad();
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.kind);
		BaseMaterial* mat = addMaterial(c.kind);
		addChannel(mat, MAT_USE_EXPONENT, MAT_EXPONENT_LINK, true);
		addChannel(mat, MAT_USE_SIGMA, MAT_SIGMA_LINK, true);
		TextureTag* tag = addTag(op, mat);
		BakeDialog& dlg = open(tag);
		EXPECT_EQ(dlg.IsEnabled(10006), c.exponent);
		EXPECT_EQ(boxOf(dlg, 10006), c.exponent);
		EXPECT_EQ(dlg.IsEnabled(10007), c.sigma);
		EXPECT_EQ(boxOf(dlg, 10007), c.sigma);
		dlg.Close();
		TextureTag::Free(tag);
	}
}

TEST_F(BakeTest, NoFileGivesTheOneMessageAndDoesNothing)
{
	PolygonObject* op = addQuad();
	BaseMaterial* mat = addMaterial(MAT_TYPE_PHONG);
	addChannel(mat, MAT_USE_ALBEDO, MAT_ALBEDO_LINK, true);
	open(addTag(op, mat));
	DialogScript::get().pushAction(DialogAction::press(IDC_BAKE_SHADERS));
	RunOpenDialogs(5000);

	EXPECT_EQ(HostConsole::get().texts(HostConsole::Kind::Message),
		std::vector<String>{String("You have to specify a file to save to.")});
	EXPECT_EQ(dialog->GetThread(), nullptr);
	EXPECT_TRUE(doc->GetUndoGroups().empty());
	EXPECT_TRUE(dialog->IsOpen());
}

TEST_F(BakeTest, BakesTheChosenChannelsIntoTheirFiles)
{
	PolygonObject* op = addQuad();
	BaseMaterial* mat = addMaterial(MAT_TYPE_PHONG);
	addChannel(mat, MAT_USE_ALBEDO, MAT_ALBEDO_LINK, true);
	addChannel(mat, MAT_USE_EXPONENT, MAT_EXPONENT_LINK, true);
	addChannel(mat, MAT_USE_EMISSION, MAT_EMISSION_LINK, true);
	// Shader text has its box on, and yet gives no file.
	addChannel(mat, MAT_USE_BUMP, MAT_BUMP_LINK, true, ID_VSL_SHADER);
	BakeDialog& dlg = open(addTag(op, mat));
	EXPECT_TRUE(boxOf(dlg, 10004));

	const std::string base = dir.file("car.jpg");
	// Emission is switched off by hand.
	bake({{10011, "8"}, {10012, "4"}, {10020, "1"}, {10017, base}, {10003, "off"}});

	EXPECT_TRUE(HostConsole::get().texts(HostConsole::Kind::Message).empty());
	const std::string albedo = dir.file("car_albedo.jpg");
	const std::string exponent = dir.file("car_exponent.jpg");
	EXPECT_EQ(dlg.GetThread()->GetFile(MAT_ALBEDO_LINK).GetString().GetStdString(), albedo);
	EXPECT_EQ(dlg.GetThread()->GetFile(MAT_EXPONENT_LINK).GetString().GetStdString(), exponent);
	EXPECT_FALSE(dlg.GetThread()->GetFile(MAT_BUMP_LINK).Content());
	EXPECT_FALSE(exists(dir.file("car_bump.jpg")));
	EXPECT_FALSE(exists(dir.file("car_emission.jpg")));
	EXPECT_FALSE(exists(base));

	// Albedo keeps its colour; exponent is saved grey, the mean of the
	// colour's components (0.4, 102 of 255). JPEG moves values a little.
	BaseBitmap picture;
	ASSERT_EQ(picture.Init(Filename(String(albedo))), IMAGERESULT_OK);
	EXPECT_EQ(picture.GetBw(), 8);
	EXPECT_EQ(picture.GetBh(), 4);
	uint16_t r, g, b;
	picture.GetPixel(3, 2, &r, &g, &b);
	EXPECT_NEAR(r, 51, 4);
	EXPECT_NEAR(g, 102, 4);
	EXPECT_NEAR(b, 153, 4);
	ASSERT_EQ(picture.Init(Filename(String(exponent))), IMAGERESULT_OK);
	picture.GetPixel(3, 2, &r, &g, &b);
	EXPECT_NEAR(r, 102, 4);
	EXPECT_EQ(r, g);
	EXPECT_EQ(g, b);

	// The user's object and tag are as they were: the tag mapped through
	// UVW already.
	EXPECT_EQ(op->GetTag(Tuvw, 1), nullptr);
	ASSERT_EQ(doc->GetUndoGroups().size(), 1u);
	EXPECT_TRUE(doc->GetUndoGroups()[0].empty());
	EXPECT_EQ(dlg.GetTimerInterval(), 0);
}

TEST_F(BakeTest, AMaterialWithoutShadersBakesNothing)
{
	PolygonObject* op = addQuad();
	BaseMaterial* mat = addMaterial(MAT_TYPE_GLOSSY_TRANSPARENT);
	for(int32_t use : {MAT_USE_ALBEDO, MAT_USE_SIGMA, MAT_USE_EXPONENT, MAT_USE_BUMP, MAT_USE_DISPLACEMENT,
			MAT_USE_EMISSION, MAT_USE_ALPHA})
		mat->GetDataInstance()->SetBool(use, true);
	BakeDialog& dlg = open(addTag(op, mat));
	for(int32_t id = 10002; id <= 10008; ++id)
		EXPECT_FALSE(boxOf(dlg, id)) << id;
	bake({{10011, "4"}, {10012, "4"}, {10017, dir.file("none.jpg")}});
	std::vector<std::string> names;
	Velorn::Platform::listDirectory(dir.path(), names);
	EXPECT_TRUE(names.empty());
}

TEST_F(BakeTest, SettingsContainerHoldsTheServicesParameters)
{
	PolygonObject* op = addQuad();
	BaseMaterial* mat = addMaterial(MAT_TYPE_GLOSSY_TRANSPARENT);
	addChannel(mat, MAT_USE_ALBEDO, MAT_ALBEDO_LINK, true);
	addChannel(mat, MAT_USE_SIGMA, MAT_SIGMA_LINK, true);
	addChannel(mat, MAT_USE_ALPHA, MAT_ALPHA_LINK, true);
	BakeDialog& dlg = open(addTag(op, mat));
	for(const auto& [id, value] : std::map<int32_t, std::string>{{10011, "300"}, {10012, "200"}, {10013, "7"},
			{10020, "2"}, {10017, "C:/out/car.jpg"}, {10002, "off"}})
		DialogScript::get().pushAction(DialogAction::set(id, String(value)));
	RunOpenDialogs();

	const BaseContainer settings = dlg.BakeSettings();
	EXPECT_TRUE(settings.GetBool(1012));
	EXPECT_EQ(settings.GetInt32(1020), 300);
	EXPECT_EQ(settings.GetInt32(1021), 200);
	EXPECT_EQ(settings.GetInt32(1030), 2);
	EXPECT_EQ(settings.GetInt32(1022), 7);
	for(int32_t id : {1024, 1025, 1026, 1027})
	{
		SCOPED_TRACE(id);
		ASSERT_NE(settings.GetDataPointer(id), nullptr);
		EXPECT_EQ(settings.GetDataPointer(id)->GetType(), DA_REAL);
		EXPECT_EQ(settings.GetFloat(id, 1.0), 0.0);
	}
	// Switched off explicitly: each would read true if it were absent.
	for(int32_t id : {1006, 1032, 1009, 1011, 1013, 1014, 1015, 1016, 1017, 1018, 1040, 1041, 2100, 2101, 2102, 2103,
			2110, 2120, 2140})
		EXPECT_FALSE(settings.GetBool(id, true)) << id;
	EXPECT_EQ(settings.GetFilename(80001).GetString().GetStdString(), "C:/out/car.jpg");
	// albedo, sigma, exponent, bump, displacement, emission, blend
	const bool boxes[] = {false, true, false, false, false, false, true};
	for(int32_t i = 0; i < 7; ++i)
	{
		SCOPED_TRACE(80002 + i);
		ASSERT_NE(settings.GetDataPointer(80002 + i), nullptr);
		EXPECT_EQ(settings.GetBool(80002 + i), boxes[i]);
	}
}

TEST(BakeFileName, SuffixOfTheBaseIsReplacedByTheChannels)
{
	const auto name = [](const char* base, size_t channel) {
		return bakeFileName(Filename(String(base)), bake_channels[channel]).GetString().GetStdString();
	};
	// The channels in their order; the grey ones are saved with one value a
	// pixel.
	const struct
	{
		const char* file;
		bool grey;
	} channels[] = {{"C:/out/car_albedo.jpg", false}, {"C:/out/car_exponent.jpg", true}, {"C:/out/car_alpha.jpg", true},
		{"C:/out/car_emission.jpg", false}, {"C:/out/car_bump.jpg", true}, {"C:/out/car_displacement.jpg", true},
		{"C:/out/car_sigma.jpg", true}};
	ASSERT_EQ(bake_channels.size(), 7u);
	for(size_t i = 0; i < 7; ++i)
	{
		SCOPED_TRACE(channels[i].file);
		EXPECT_EQ(name("C:/out/car.jpg", i), channels[i].file);
		EXPECT_EQ(bake_channels[i].grey, channels[i].grey);
	}
	EXPECT_EQ(name("/maps.v2/car", 0), "/maps.v2/car_albedo.jpg");
	EXPECT_EQ(name("/maps/car.tar.png", 0), "/maps/car.tar_albedo.jpg");
}

TEST_F(BakeTest, AnUnwritableFolderLeavesNoFileAndNoMessage)
{
	PolygonObject* op = addQuad();
	BaseMaterial* mat = addMaterial(MAT_TYPE_PHONG);
	addChannel(mat, MAT_USE_ALBEDO, MAT_ALBEDO_LINK, true);
	open(addTag(op, mat));
	const std::string missing = dir.file("gone/car.jpg");
	bake({{10011, "4"}, {10012, "4"}, {10017, missing}});

	EXPECT_FALSE(exists(dir.file("gone/car_albedo.jpg")));
	EXPECT_FALSE(dialog->GetThread()->GetFile(MAT_ALBEDO_LINK).Content());
	EXPECT_TRUE(HostConsole::get().texts(HostConsole::Kind::Message).empty());
}

TEST_F(BakeTest, AProjectionBecomesAUVWTagOfTheObject)
{
	PolygonObject* op = addQuad(false);
	BaseMaterial* mat = addMaterial(MAT_TYPE_PHONG);
	addChannel(mat, MAT_USE_ALBEDO, MAT_ALBEDO_LINK, true);
	TextureTag* tag = addTag(op, mat, TEXTURETAG_PROJECTION_FLAT);
	// The flat projection's square, lying in the quad's plane.
	tag->SetMl(Matrix(Vector(), Vector(1, 0, 0), Vector(0, 0, 1), Vector(0, 1, 0)));
	open(tag);
	bake({{10011, "4"}, {10012, "4"}, {10017, dir.file("flat.jpg")}});

	EXPECT_TRUE(exists(dir.file("flat_albedo.jpg")));
	EXPECT_EQ(tag->GetDataInstance()->GetInt32(TEXTURETAG_PROJECTION), TEXTURETAG_PROJECTION_UVW);
	BaseTag* uvw = op->GetFirstTag();
	ASSERT_NE(uvw, nullptr);
	EXPECT_EQ(uvw->GetType(), Tuvw);
	EXPECT_EQ(uvw->GetNext(), tag);
	EXPECT_EQ(static_cast<UVWTag*>(uvw)->GetDataCount(), 1);
	ASSERT_EQ(doc->GetUndoGroups().size(), 1u);
	const std::vector<UndoEntry>& undo = doc->GetUndoGroups()[0];
	ASSERT_EQ(undo.size(), 2u);
	EXPECT_EQ(undo[0].type, UNDOTYPE_NEW);
	EXPECT_EQ(undo[0].node, uvw);
	EXPECT_EQ(undo[1].type, UNDOTYPE_CHANGE_SMALL);
	EXPECT_EQ(undo[1].node, tag);
}

TEST_F(BakeTest, CommandsApplyOnlyToAPluginMaterialOnAPolygonObject)
{
	std::unique_ptr<CommandData> tagCommand(AllocBakeUVWTagCommand());
	std::unique_ptr<CommandData> objectCommand(AllocBakeMaterialCommand());
	BaseMaterial* velorn = addMaterial(MAT_TYPE_PHONG);
	BaseMaterial* standard = BaseMaterial::Alloc(Mmaterial);
	doc->InsertMaterial(standard);

	// Nothing selected.
	EXPECT_EQ(tagCommand->GetState(doc), 0);
	EXPECT_EQ(objectCommand->GetState(doc), 0);

	PolygonObject* quad = addQuad();
	TextureTag* first = addTag(quad, standard);
	TextureTag* second = addTag(quad, velorn);
	// Two tags selected.
	EXPECT_EQ(tagCommand->GetState(doc), 0);
	// A tag of the host's standard material.
	second->DelBit(BIT_ACTIVE);
	EXPECT_EQ(tagCommand->GetState(doc), 0);
	// The one tag of the plug-in material on the polygon object.
	first->DelBit(BIT_ACTIVE);
	second->SetBit(BIT_ACTIVE);
	EXPECT_EQ(tagCommand->GetState(doc), CMD_ENABLED);
	EXPECT_EQ(selectedBakeTag(doc), second);
	// The selected object's first tag of the plug-in material.
	EXPECT_EQ(objectCommand->GetState(doc), 0);
	quad->SetBit(BIT_ACTIVE);
	EXPECT_EQ(objectCommand->GetState(doc), CMD_ENABLED);
	EXPECT_EQ(objectBakeTag(doc), second);
	// A selected tag that is no texture tag.
	second->DelBit(BIT_ACTIVE);
	quad->GetFirstTag()->SetBit(BIT_ACTIVE);
	EXPECT_EQ(tagCommand->GetState(doc), 0);
	quad->GetFirstTag()->DelBit(BIT_ACTIVE);

	// A plug-in material on an object that is no polygon object.
	quad->DelBit(BIT_ACTIVE);
	BaseObject* sphere = BaseObject::Alloc(Osphere);
	doc->InsertObject(sphere, nullptr, nullptr);
	addTag(sphere, velorn);
	sphere->SetBit(BIT_ACTIVE);
	EXPECT_EQ(tagCommand->GetState(doc), 0);
	EXPECT_EQ(objectCommand->GetState(doc), 0);

	// The host runs no disabled command: no dialog opens.
	PluginRecord record;
	record.command = std::shared_ptr<CommandData>(tagCommand.release());
	EXPECT_EQ(RunCommand(record, doc), COMMANDRESULT::DISABLED);
	EXPECT_TRUE(OpenDialogs().empty());
	// An enabled one opens the bake dialog.
	sphere->GetFirstTag()->DelBit(BIT_ACTIVE);
	second->SetBit(BIT_ACTIVE);
	EXPECT_EQ(RunCommand(record, doc), COMMANDRESULT::OK);
	ASSERT_EQ(OpenDialogs().size(), 1u);
	EXPECT_EQ(OpenDialogs()[0]->GetTitle().GetStdString(), "Bake Dialog");
	CloseOpenDialogs();
}

TEST_F(BakeTest, BrowseButtonAsksForTheFile)
{
	PolygonObject* op = addQuad();
	BakeDialog& dlg = open(addTag(op, addMaterial(MAT_TYPE_PHONG)));
	DialogScript::get().push(DialogAnswer::choose(Filename(String("/tmp/chosen.jpg"))));
	DialogScript::get().pushAction(DialogAction::press(IDC_BAKE_BROWSE));
	// A cancelled requester keeps the file.
	DialogScript::get().pushAction(DialogAction::press(IDC_BAKE_BROWSE));
	RunOpenDialogs();

	const std::vector<DialogRequest> requests = DialogScript::get().requests();
	ASSERT_EQ(requests.size(), 2u);
	EXPECT_EQ(requests[0].kind, DialogRequest::Kind::Save);
	EXPECT_EQ(requests[0].title.GetStdString(), "Save image to...");
	Filename file;
	dlg.GetFilename(10017, file);
	EXPECT_EQ(file.GetString().GetStdString(), "/tmp/chosen.jpg");
}

} // namespace
