#include "materials/material_conversion.h"

#include "c4d/atom_array.h"
#include "c4d/base_document.h"
#include "c4d/base_shader.h"
#include "c4d/console.h"
#include "c4d/dialog_script.h"
#include "c4d/document_file.h"
#include "c4d/events.h"
#include "c4d/plugin_registry.h"
#include "c4d/resources.h"
#include "c4d/texture_tag.h"
#include "host/plugin_ids.h"
#include "materials/convert_command.h"
#include "materials/material_ids.h"
#include "materials/material_plugin.h"
#include "materials/new_material_command.h"

#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace
{

const int32_t ID_CONVERT_MATERIALS = 1021852;
const int32_t ID_NEW_MATERIAL = 1024454;

// The material plug-in and both commands registered as the module registers
// them, with a clean dialog script and event count.
class ConversionTest : public testing::Test
{
protected:
	void SetUp() override
	{
		PluginRegistry::get().clear();
		StringTable strings;
		strings.set(10010, String("Convert Materials to Velorn"));
		strings.set(10024, String("New Velorn Material"));
		strings.set(10025, String("Velorn Material"));
		HostResources::get().setStrings(strings);
		ASSERT_TRUE(RegisterVelornMaterial());
		ASSERT_TRUE(RegisterConvertMaterialsCommand());
		ASSERT_TRUE(RegisterNewMaterialCommand());
		DialogScript::get().clear();
		HostConsole::get().clear();
		ResetEventCount();
	}

	void TearDown() override
	{
		BaseDocument::Free(doc);
		DialogScript::get().clear();
		PluginRegistry::get().clear();
		HostResources::get().clear();
	}

	// A fresh plug-in material: what every target starts from.
	static BaseContainer freshMaterial()
	{
		BaseMaterial* mat = BaseMaterial::Alloc(ID_VELORN_MATERIAL);
		EXPECT_NE(mat, nullptr);
		const BaseContainer data = mat ? mat->GetData() : BaseContainer();
		BaseMaterial::Free(mat);
		return data;
	}

	// A standard material of the document, named name, first in its list.
	BaseMaterial* standard(const char* name, std::initializer_list<std::pair<int32_t, GeData>> values = {})
	{
		BaseMaterial* mat = BaseMaterial::Alloc(Mmaterial);
		mat->SetName(String(name));
		for(const auto& [id, value] : values)
			mat->GetDataInstance()->SetData(id, value);
		doc->InsertMaterial(mat, lastMaterial());
		return mat;
	}

	BaseMaterial* lastMaterial() const
	{
		BaseMaterial* last = doc->GetFirstMaterial();
		while(last && last->GetNext())
			last = last->GetNext();
		return last;
	}

	// A colour shader owned by mat and linked from its parameter id.
	static BaseShader* addShader(BaseMaterial& mat, int32_t id, const char* name, const Vector& colour)
	{
		BaseShader* sh = BaseShader::Alloc(Xcolor);
		sh->SetName(String(name));
		sh->GetDataInstance()->SetVector(COLORSHADER_COLOR, colour);
		mat.InsertShader(sh);
		mat.GetDataInstance()->SetLink(id, sh);
		return sh;
	}

	// An object named name with a texture tag of mat, under parent or at the
	// end of the top level.
	BaseObject* textured(const char* name, BaseMaterial* mat, BaseObject* parent = nullptr)
	{
		BaseObject* op = BaseObject::Alloc(Onull);
		op->SetName(String(name));
		BaseObject* pred = parent ? parent->GetDownLast() : doc->GetFirstObject();
		while(!parent && pred && pred->GetNext())
			pred = pred->GetNext();
		doc->InsertObject(op, parent, pred);
		TextureTag* tag = TextureTag::Alloc();
		tag->SetName(String(name) + String(" tag"));
		tag->SetMaterial(mat);
		op->InsertTag(tag);
		return op;
	}

	static std::vector<BaseShader*> shadersOf(const BaseMaterial& mat)
	{
		std::vector<BaseShader*> shaders;
		for(BaseShader* sh = mat.GetFirstShader(); sh; sh = sh->GetNext())
			shaders.push_back(sh);
		return shaders;
	}

	static TextureTag* tagOf(BaseObject* op) { return static_cast<TextureTag*>(op->GetTag(Ttexture)); }

	// The new material converted from source.
	static BaseMaterial* convertedFrom(BaseMaterial* source)
	{
		BaseMaterial* target = BaseMaterial::Alloc(ID_VELORN_MATERIAL);
		EXPECT_TRUE(convertMaterial(source, target));
		return target;
	}

	bool runCommand(int32_t id) { return PluginRegistry::get().find(id)->command->Execute(doc); }

	// The names of the document's materials in order, the plug-in's marked.
	std::vector<std::string> materialNames() const
	{
		std::vector<std::string> names;
		for(BaseMaterial* mat = doc->GetFirstMaterial(); mat; mat = mat->GetNext())
			names.push_back(mat->GetName().GetStdString() + (mat->GetType() == ID_VELORN_MATERIAL ? " (velorn)" : ""));
		return names;
	}

	BaseDocument* doc = BaseDocument::Alloc();
};

// A value the conversion wrote, of the stored type; reals compare to 1e-9.
void expectValue(const BaseContainer& data, int32_t id, const GeData& expected)
{
	SCOPED_TRACE("parameter " + std::to_string(id));
	const GeData& value = data.GetData(id);
	ASSERT_EQ(value.GetType(), expected.GetType());
	if(expected.GetType() == DA_REAL)
		EXPECT_NEAR(value.GetFloat(), expected.GetFloat(), 1e-9);
	else
		EXPECT_TRUE(value == expected);
}

} // namespace

TEST_F(ConversionTest, KindAndValuesFollowTheChannels)
{
	const Vector colour(0.1, 0.2, 0.3);
	const Vector filter(0.2, 0.4, 0.6);
	// Every case starts from the host's new material with this colour,
	// refraction and transparency colour; only the switches named are on.
	using Values = std::vector<std::pair<int32_t, GeData>>;
	const struct
	{
		const char* name;
		Values source;
		Values expected;
		// Parameters that keep the value of a fresh material.
		std::vector<int32_t> unchanged;
	} cases[] = {
		{"transparency decides before reflection",
			{{MATERIAL_USE_TRANSPARENCY, 1}, {MATERIAL_USE_REFLECTION, 1}, {MATERIAL_TRANSPARENCY_DISPERSION, 1.0},
				{MATERIAL_TRANSPARENCY_BRIGHTNESS, 0.5}},
			{{MAT_TYPE, MAT_TYPE_GLOSSY_TRANSPARENT}, {MAT_EXPONENT_VALUE, 25.0}, {MAT_EXPONENT_B, 15.0},
				{MAT_MEDIUM_IOR, 1.33}, {MAT_ABSORPTION_MODE, MAT_SPECTRUM_RGB}, {MAT_ABSORPTION_RGB_COLOUR, filter},
				{MAT_ABSORPTION_RGB_SCALE, 5.0}, {MAT_USE_MEDIUM, 1}, {MAT_USE_EXPONENT, 1}, {MAT_USE_ALBEDO, 0}},
			// No colour for the transparent kinds, no Phong index.
			{MAT_ALBEDO_COLOUR, MAT_ALBEDO_SCALE, MAT_PHONG_IOR}},
		{"dispersion 0.5",
			{{MATERIAL_USE_TRANSPARENCY, 1}, {MATERIAL_TRANSPARENCY_DISPERSION, 0.5}},
			{{MAT_TYPE, MAT_TYPE_GLOSSY_TRANSPARENT}, {MAT_EXPONENT_VALUE, 2525.0}, {MAT_EXPONENT_B, 15.0}}, {}},
		{"no dispersion: specular",
			{{MATERIAL_USE_TRANSPARENCY, 1}, {MATERIAL_TRANSPARENCY_DISPERSION, 0.0}},
			{{MAT_TYPE, MAT_TYPE_SPECULAR}, {MAT_MEDIUM_IOR, 1.33}, {MAT_USE_MEDIUM, 1},
				{MAT_USE_SPECULAR_OPTIONS, 1}, {MAT_USE_EXPONENT, 0}},
			{MAT_EXPONENT_VALUE, MAT_EXPONENT_B, MAT_ALBEDO_COLOUR}},
		{"transparency brightness missing: read as 1",
			{{MATERIAL_USE_TRANSPARENCY, 1}, {MATERIAL_TRANSPARENCY_BRIGHTNESS, GeData()}},
			{{MAT_TYPE, MAT_TYPE_SPECULAR}, {MAT_ABSORPTION_RGB_SCALE, 10.0}}, {}},
		{"mirror reflection",
			{{MATERIAL_USE_REFLECTION, 1}, {MATERIAL_REFLECTION_BRIGHTNESS, 0.5}},
			{{MAT_TYPE, MAT_TYPE_PHONG}, {MAT_PHONG_IOR, 3.5}, {MAT_EXPONENT_VALUE, 100000.0}, {MAT_EXPONENT_B, 15.0},
				{MAT_ALBEDO_COLOUR, colour}, {MAT_ALBEDO_SCALE, 0.7}, {MAT_USE_SPECULAR, 1}, {MAT_USE_EXPONENT, 1},
				{MAT_USE_ALBEDO, 1}},
			{MAT_MEDIUM_IOR, MAT_ABSORPTION_RGB_COLOUR}},
		{"blurred reflection",
			{{MATERIAL_USE_REFLECTION, 1}, {MATERIAL_REFLECTION_BRIGHTNESS, 1.0}, {MATERIAL_REFLECTION_DISPERSION, 1.0}},
			{{MAT_TYPE, MAT_TYPE_PHONG}, {MAT_PHONG_IOR, 11.0}, {MAT_EXPONENT_VALUE, 25.0}, {MAT_EXPONENT_B, 15.0}},
			{}},
		{"specular highlight",
			{{MATERIAL_USE_SPECULAR, 1}, {MATERIAL_SPECULAR_WIDTH, 0.5}, {MATERIAL_SPECULAR_HEIGHT, 0.2}},
			// 1 + 20 x 0.0070422534, and (50)² x 0.025.
			{{MAT_TYPE, MAT_TYPE_PHONG}, {MAT_PHONG_IOR, 1.140845068}, {MAT_EXPONENT_VALUE, 62.5},
				{MAT_EXPONENT_B, 15.0}, {MAT_ALBEDO_COLOUR, colour}},
			{}},
		{"Oren-Nayar illumination",
			{{MATERIAL_USE_SPECULAR, 0}, {MATERIAL_ILLUMINATION_MODEL, 2}},
			{{MAT_TYPE, MAT_TYPE_OREN_NAYAR}, {MAT_ALBEDO_COLOUR, colour}, {MAT_ALBEDO_SCALE, 0.7}, {MAT_USE_SIGMA, 1}},
			{MAT_EXPONENT_VALUE, MAT_PHONG_IOR}},
		{"other illumination: diffuse",
			{{MATERIAL_USE_SPECULAR, 0}, {MATERIAL_ILLUMINATION_MODEL, 1}},
			{{MAT_TYPE, MAT_TYPE_DIFFUSE}, {MAT_ALBEDO_COLOUR, colour}, {MAT_USE_SIGMA, 0}, {MAT_USE_EXPONENT, 0}},
			{MAT_EXPONENT_VALUE}},
	};
	const BaseContainer fresh = freshMaterial();
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		BaseMaterial* source = standard("Source", {{MATERIAL_COLOR_COLOR, colour}, {MATERIAL_COLOR_BRIGHTNESS, 0.7},
			{MATERIAL_TRANSPARENCY_REFRACTION, 1.33}, {MATERIAL_TRANSPARENCY_COLOR, filter}});
		for(const auto& [id, value] : c.source)
			if(value.GetType() == DA_NIL)
				source->GetDataInstance()->RemoveData(id);
			else
				source->GetDataInstance()->SetData(id, value);
		BaseMaterial* target = convertedFrom(source);
		const BaseContainer& data = *target->GetDataInstance();
		for(const auto& [id, value] : c.expected)
			expectValue(data, id, value);
		for(int32_t id : c.unchanged)
			EXPECT_TRUE(data.GetData(id) == fresh.GetData(id)) << "parameter " << id;
		EXPECT_EQ(target->GetName(), String("Source"));
		BaseMaterial::Free(target);
		BaseMaterial::Free(source);
	}
}

TEST_F(ConversionTest, ShadersAreCopiedUnderTheTargetByKind)
{
	// Every texture channel on with a shader named after it; the alpha hard.
	const struct
	{
		const char* name;
		int32_t channel;
		int32_t shaderId;
		int32_t targetLink;
	} channels[] = {
		{"colour", MATERIAL_USE_COLOR, MATERIAL_COLOR_SHADER, MAT_ALBEDO_LINK},
		{"glow", MATERIAL_USE_LUMINANCE, MATERIAL_LUMINANCE_SHADER, MAT_EMISSION_LINK},
		{"bumps", MATERIAL_USE_BUMP, MATERIAL_BUMP_SHADER, MAT_BUMP_LINK},
		{"normals", MATERIAL_USE_NORMAL, MATERIAL_NORMAL_SHADER, MAT_NORMAL_MAP_LINK},
		{"heights", MATERIAL_USE_DISPLACEMENT, MATERIAL_DISPLACEMENT_SHADER, MAT_DISPLACEMENT_LINK},
		{"shine", MATERIAL_USE_SPECULARCOLOR, MATERIAL_SPECULAR_COLOR_SHADER, MAT_EXPONENT_LINK},
		{"cutout", MATERIAL_USE_ALPHA, MATERIAL_ALPHA_SHADER, MAT_ALPHA_LINK},
	};
	// The target links that a kind leaves empty.
	const struct
	{
		const char* name;
		int32_t transparency;
		double dispersion;
		std::vector<int32_t> empty;
	} kinds[] = {
		{"Phong takes all", 0, 0, {}},
		{"glossy transparent: no colour, no alpha", 1, 0.5, {MAT_ALBEDO_LINK, MAT_ALPHA_LINK}},
		{"specular: no colour, exponent or alpha", 1, 0, {MAT_ALBEDO_LINK, MAT_EXPONENT_LINK, MAT_ALPHA_LINK}},
	};
	for(const auto& k : kinds)
	{
		SCOPED_TRACE(k.name);
		BaseMaterial* source = standard("Textured", {{MATERIAL_USE_TRANSPARENCY, k.transparency},
			{MATERIAL_TRANSPARENCY_DISPERSION, k.dispersion}, {MATERIAL_ALPHA_SOFT, 0},
			{MATERIAL_BUMP_STRENGTH, 20.0}, {MATERIAL_DISPLACEMENT_STRENGTH, 5.0}, {MATERIAL_LUMINANCE_BRIGHTNESS, 3.0}});
		for(const auto& c : channels)
		{
			source->GetDataInstance()->SetBool(c.channel, true);
			addShader(*source, c.shaderId, c.name, Vector(0.5, 0.25, 0.125));
		}
		BaseMaterial* target = convertedFrom(source);
		const BaseContainer& data = *target->GetDataInstance();
		// Copies that the target owns, one per link, not the source's shaders.
		const std::vector<BaseShader*> owned = shadersOf(*target);
		EXPECT_EQ(owned.size(), std::size(channels) - k.empty.size());
		EXPECT_EQ(shadersOf(*source).size(), std::size(channels));
		for(const auto& c : channels)
		{
			SCOPED_TRACE(c.name);
			BaseShader* sh = static_cast<BaseShader*>(data.GetLink(c.targetLink, nullptr, Xbase));
			if(std::find(k.empty.begin(), k.empty.end(), c.targetLink) != k.empty.end())
			{
				EXPECT_EQ(sh, nullptr);
				continue;
			}
			ASSERT_NE(sh, nullptr);
			EXPECT_NE(std::find(owned.begin(), owned.end(), sh), owned.end());
			EXPECT_EQ(sh->GetName(), String(c.name));
			EXPECT_EQ(sh->GetDataInstance()->GetVector(COLORSHADER_COLOR), Vector(0.5, 0.25, 0.125));
		}

		expectValue(data, MAT_USE_EMISSION, 1);
		expectValue(data, MAT_EMISSION_MODE, MAT_SPECTRUM_RGB);
		expectValue(data, MAT_EMISSION_RGB_SCALE, 3.0);
		expectValue(data, MAT_USE_BUMP, 1);
		expectValue(data, MAT_BUMP_B, 0.2);
		expectValue(data, MAT_USE_NORMAL_MAP, 1);
		expectValue(data, MAT_USE_DISPLACEMENT, 1);
		expectValue(data, MAT_DISPLACEMENT_B, 0.05);
		if(k.empty.empty())
		{
			// The hard alpha is inverted, with the terms stored as longs.
			expectValue(data, MAT_USE_ALPHA, 1);
			expectValue(data, MAT_ALPHA_B, -1);
			expectValue(data, MAT_ALPHA_C, 1);
		}
		BaseMaterial::Free(target);
		BaseMaterial::Free(source);
	}
}

TEST_F(ConversionTest, ChannelsWithoutShadersAndSoftAlphaChangeNothing)
{
	const BaseContainer fresh = freshMaterial();
	// Bump, normal, displacement and alpha on, but no shaders; a soft alpha
	// with a shader keeps the terms.
	BaseMaterial* source = standard("Plain", {{MATERIAL_USE_BUMP, 1}, {MATERIAL_USE_NORMAL, 1},
		{MATERIAL_USE_DISPLACEMENT, 1}, {MATERIAL_USE_SPECULARCOLOR, 1}, {MATERIAL_USE_LUMINANCE, 1},
		{MATERIAL_LUMINANCE_COLOR, Vector(1, 0.5, 0)}});
	BaseMaterial* target = convertedFrom(source);
	const BaseContainer& data = *target->GetDataInstance();
	const std::vector<int32_t> unchanged = {MAT_USE_BUMP, MAT_BUMP_B, MAT_USE_NORMAL_MAP, MAT_USE_DISPLACEMENT,
		MAT_DISPLACEMENT_B, MAT_USE_ALPHA, MAT_EXPONENT_LINK, MAT_EMISSION_LINK};
	for(int32_t id : unchanged)
		EXPECT_TRUE(data.GetData(id) == fresh.GetData(id)) << "parameter " << id;
	// The luminance needs no shader.
	expectValue(data, MAT_USE_EMISSION, 1);
	expectValue(data, MAT_EMISSION_RGB_COLOUR, Vector(1, 0.5, 0));
	EXPECT_EQ(target->GetFirstShader(), nullptr);
	BaseMaterial::Free(target);

	source->GetDataInstance()->SetBool(MATERIAL_USE_ALPHA, true);
	source->GetDataInstance()->SetBool(MATERIAL_ALPHA_SOFT, true);
	addShader(*source, MATERIAL_ALPHA_SHADER, "Mask", Vector(1, 1, 1));
	target = convertedFrom(source);
	expectValue(*target->GetDataInstance(), MAT_USE_ALPHA, 1);
	EXPECT_TRUE(target->GetDataInstance()->GetData(MAT_ALPHA_B) == fresh.GetData(MAT_ALPHA_B));
	EXPECT_TRUE(target->GetDataInstance()->GetData(MAT_ALPHA_C) == fresh.GetData(MAT_ALPHA_C));
	BaseMaterial::Free(target);
}

TEST_F(ConversionTest, OtherSourcesGiveOnlyTheirName)
{
	const BaseContainer fresh = freshMaterial();
	BaseMaterial* source = BaseMaterial::Alloc(ID_VELORN_MATERIAL);
	source->SetName(String("Already Velorn"));
	source->GetDataInstance()->SetInt32(MAT_TYPE, MAT_TYPE_SPECULAR);
	source->GetDataInstance()->SetFloat(MAT_MEDIUM_IOR, 2.4);
	BaseMaterial* target = convertedFrom(source);
	EXPECT_EQ(target->GetName(), String("Already Velorn"));
	EXPECT_TRUE(*target->GetDataInstance() == fresh);

	EXPECT_FALSE(convertMaterial(nullptr, target));
	EXPECT_FALSE(convertMaterial(source, nullptr));
	BaseMaterial::Free(target);
	BaseMaterial::Free(source);
}

TEST_F(ConversionTest, CommandReplacesTheMaterialsAndRecordsItsUndo)
{
	// Red is used by the first object and its sibling, Blue by the child in
	// between; Velorn is already the plug-in's and used by nothing.
	BaseMaterial* red = standard("Red", {{MATERIAL_COLOR_COLOR, Vector(1, 0, 0)}});
	addShader(*red, MATERIAL_COLOR_SHADER, "Red paint", Vector(0.9, 0, 0));
	BaseMaterial* blue = standard("Blue", {{MATERIAL_USE_SPECULAR, 0}, {MATERIAL_ILLUMINATION_MODEL, 2}});
	BaseMaterial* velorn = BaseMaterial::Alloc(ID_VELORN_MATERIAL);
	velorn->SetName(String("Velorn"));
	doc->InsertMaterial(velorn, blue);
	BaseObject* first = textured("First", red);
	BaseObject* child = textured("Child", blue, first);
	BaseObject* second = textured("Second", red);
	// A layer of that name inside another layer is not the one searched for.
	LayerObject* archive = LayerObject::Alloc();
	archive->SetName(String("Archive"));
	doc->GetLayerObjectRoot()->InsertLast(archive);
	LayerObject* nested = LayerObject::Alloc();
	nested->SetName(String("Old Materials"));
	nested->InsertUnder(archive);
	const uint32_t dirtyBefore = tagOf(first)->GetDirty(DIRTYFLAGS_DATA);

	ASSERT_TRUE(runCommand(ID_CONVERT_MATERIALS));

	// Nothing was selected: no question, every material converted, the new
	// ones in front in the old order.
	EXPECT_TRUE(DialogScript::get().requests().empty());
	EXPECT_EQ(materialNames(), (std::vector<std::string>{"Red (velorn)", "Blue (velorn)", "Velorn (velorn)", "Red", "Blue",
		"Velorn (velorn)"}));
	BaseMaterial* newRed = doc->GetFirstMaterial();
	BaseMaterial* newBlue = newRed->GetNext();
	BaseMaterial* newVelorn = newBlue->GetNext();
	EXPECT_EQ(newRed->GetDataInstance()->GetInt32(MAT_TYPE), MAT_TYPE_PHONG);
	EXPECT_EQ(newBlue->GetDataInstance()->GetInt32(MAT_TYPE), MAT_TYPE_OREN_NAYAR);
	ASSERT_NE(newRed->GetFirstShader(), nullptr);
	EXPECT_EQ(newRed->GetFirstShader()->GetName(), String("Red paint"));

	LayerObject* layer = static_cast<LayerObject*>(archive->GetNext());
	ASSERT_NE(layer, nullptr);
	EXPECT_EQ(layer->GetName(), String("Old Materials"));
	EXPECT_EQ(layer->GetNext(), nullptr);
	for(BaseMaterial* old : {red, blue, velorn})
		EXPECT_EQ(old->GetLayerObject(doc), layer) << old->GetName().GetStdString();
	EXPECT_EQ(newRed->GetLayerObject(doc), nullptr);

	// The tags point to the new materials; nothing uses the old ones.
	EXPECT_EQ(tagOf(first)->GetMaterial(), newRed);
	EXPECT_EQ(tagOf(child)->GetMaterial(), newBlue);
	EXPECT_EQ(tagOf(second)->GetMaterial(), newRed);
	EXPECT_GT(tagOf(first)->GetDirty(DIRTYFLAGS_DATA), dirtyBefore);

	// One undo group: the layer, then per material from the last: the new
	// one, the old one, its tags in the order of the tree walk.
	const struct
	{
		int32_t type;
		BaseList2D* node;
	} expected[] = {
		{UNDOTYPE_NEW, layer},
		{UNDOTYPE_NEW, newVelorn},
		{UNDOTYPE_CHANGE, velorn},
		{UNDOTYPE_NEW, newBlue},
		{UNDOTYPE_CHANGE, blue},
		{UNDOTYPE_CHANGE, tagOf(child)},
		{UNDOTYPE_NEW, newRed},
		{UNDOTYPE_CHANGE, red},
		{UNDOTYPE_CHANGE, tagOf(first)},
		{UNDOTYPE_CHANGE, tagOf(second)},
	};
	ASSERT_EQ(doc->GetUndoGroups().size(), 1u);
	const std::vector<UndoEntry>& entries = doc->GetUndoGroups()[0];
	ASSERT_EQ(entries.size(), std::size(expected));
	for(size_t i = 0; i < entries.size(); ++i)
	{
		SCOPED_TRACE("entry " + std::to_string(i));
		EXPECT_EQ(entries[i].type, expected[i].type);
		EXPECT_EQ(entries[i].node, expected[i].node);
	}
	EXPECT_FALSE(doc->IsUndoOpen());
	EXPECT_EQ(EventCount(), 1);

	// Saved and loaded back, the document gives the same text.
	VelornTest::TempDir dir;
	const Filename file(String(dir.file("converted.json")));
	SaveDocumentFile(*doc, file);
	BaseDocument* loaded = LoadDocumentFile(file);
	ASSERT_NE(loaded, nullptr);
	EXPECT_EQ(WriteDocumentText(*loaded), WriteDocumentText(*doc));
	BaseMaterial* loadedRed = loaded->GetFirstMaterial();
	EXPECT_EQ(loadedRed->GetType(), ID_VELORN_MATERIAL);
	EXPECT_EQ(static_cast<TextureTag*>(loaded->GetFirstObject()->GetTag(Ttexture))->GetMaterial(), loadedRed);
	BaseDocument::Free(loaded);
}

TEST_F(ConversionTest, CommandAsksAboutTheSelection)
{
	BaseMaterial* red = standard("Red");
	BaseMaterial* blue = standard("Blue");
	standard("Green");
	BaseObject* op = textured("Ball", blue);
	doc->SetActiveMaterial(red, SELECTION_NEW);
	doc->SetActiveMaterial(blue, SELECTION_ADD);
	LayerObject* layer = LayerObject::Alloc();
	layer->SetName(String("Old Materials"));
	doc->GetLayerObjectRoot()->InsertLast(layer);

	// Yes: only the selected ones, into the existing layer.
	DialogScript::get().push(DialogAnswer::press(true));
	ASSERT_TRUE(runCommand(ID_CONVERT_MATERIALS));
	const std::vector<DialogRequest> asked = DialogScript::get().requests();
	ASSERT_EQ(asked.size(), 1u);
	EXPECT_EQ(asked[0].kind, DialogRequest::Kind::Question);
	EXPECT_EQ(asked[0].title, String("Convert only selected materials?"));
	EXPECT_EQ(materialNames(), (std::vector<std::string>{"Red (velorn)", "Blue (velorn)", "Red", "Blue", "Green"}));
	EXPECT_EQ(doc->GetLayerObjectRoot()->GetFirst(), layer);
	EXPECT_EQ(layer->GetNext(), nullptr);
	EXPECT_EQ(blue->GetLayerObject(doc), layer);
	EXPECT_EQ(tagOf(op)->GetMaterial(), doc->GetFirstMaterial()->GetNext());
	// No new layer: the group starts with the last selected material.
	ASSERT_EQ(doc->GetUndoGroups().size(), 1u);
	EXPECT_EQ(doc->GetUndoGroups()[0].front().type, UNDOTYPE_NEW);
	EXPECT_EQ(doc->GetUndoGroups()[0].front().nodeType, ID_VELORN_MATERIAL);

	// No: every material, the new ones included.
	DialogScript::get().clear();
	DialogScript::get().push(DialogAnswer::press(false));
	ASSERT_TRUE(runCommand(ID_CONVERT_MATERIALS));
	EXPECT_EQ(DialogScript::get().requests().size(), 1u);
	EXPECT_EQ(materialNames().size(), 10u);
	EXPECT_EQ(EventCount(), 2);
}

TEST_F(ConversionTest, CommandOnAnEmptyDocumentDoesNothing)
{
	ASSERT_TRUE(runCommand(ID_CONVERT_MATERIALS));
	EXPECT_EQ(doc->GetLayerObjectRoot()->GetFirst(), nullptr);
	EXPECT_TRUE(doc->GetUndoGroups().empty());
	EXPECT_EQ(EventCount(), 0);
}

TEST_F(ConversionTest, NewMaterialCommandAddsOneSelectedMaterial)
{
	BaseMaterial* old = standard("Old");
	doc->SetActiveMaterial(old, SELECTION_NEW);
	ASSERT_TRUE(runCommand(ID_NEW_MATERIAL));
	BaseMaterial* mat = doc->GetFirstMaterial();
	ASSERT_NE(mat, old);
	EXPECT_EQ(mat->GetType(), ID_VELORN_MATERIAL);
	EXPECT_EQ(mat->GetName(), String("Velorn Material"));
	EXPECT_EQ(mat->GetDataInstance()->GetInt32(MAT_TYPE), MAT_TYPE_DIFFUSE);
	AtomArray active;
	doc->GetActiveMaterials(active);
	ASSERT_EQ(active.GetCount(), 1);
	EXPECT_EQ(active.GetIndex(0), mat);
	ASSERT_EQ(doc->GetUndoGroups().size(), 1u);
	ASSERT_EQ(doc->GetUndoGroups()[0].size(), 1u);
	EXPECT_EQ(doc->GetUndoGroups()[0][0].type, UNDOTYPE_NEW);
	EXPECT_EQ(doc->GetUndoGroups()[0][0].node, mat);
	EXPECT_EQ(EventCount(), 1);
}
