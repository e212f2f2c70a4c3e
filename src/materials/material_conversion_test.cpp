#include "materials/material_conversion.h"

#include "c4d/atom_array.h"
#include "c4d/base_shader.h"
#include "c4d/dialog_script.h"
#include "c4d/document_file.h"
#include "c4d/events.h"
#include "c4d/texture_tag.h"
#include "materials/convert_command.h"
#include "materials/material_test_helpers.h"
#include "materials/new_material_command.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace
{

const int32_t ID_CONVERT_MATERIALS = 1021852, ID_NEW_MATERIAL = 1024454;

class ConversionTest : public MaterialTest
{
protected:
	void SetUp() override
	{
		MaterialTest::SetUp();
		ASSERT_TRUE(RegisterConvertMaterialsCommand());
		ASSERT_TRUE(RegisterNewMaterialCommand());
		DialogScript::get().clear();
		ResetEventCount();
	}

	void TearDown() override
	{
		DialogScript::get().clear();
		MaterialTest::TearDown();
	}

	// A standard material, last in the document.
	BaseMaterial* standard(const char* name, const Values& values = {})
	{
		BaseMaterial* mat = BaseMaterial::Alloc(Mmaterial);
		mat->SetName(String(name));
		for(const auto& [id, value] : values)
			mat->GetDataInstance()->SetData(id, value);
		doc->InsertMaterial(mat, lastMaterial());
		return mat;
	}

	// An object with a texture tag of mat, first under parent.
	BaseObject* textured(BaseMaterial* mat, BaseObject* parent = nullptr)
	{
		BaseObject* op = BaseObject::Alloc(Onull);
		doc->InsertObject(op, parent, nullptr);
		TextureTag* tag = TextureTag::Alloc();
		tag->SetMaterial(mat);
		op->InsertTag(tag);
		return op;
	}

	static TextureTag* tagOf(BaseObject* op) { return static_cast<TextureTag*>(op->GetTag(Ttexture)); }

	static BaseMaterial* convertedFrom(BaseMaterial* source)
	{
		BaseMaterial* target = BaseMaterial::Alloc(ID_VELORN_MATERIAL);
		EXPECT_TRUE(convertMaterial(source, target));
		return target;
	}

	bool convertCommand() { return PluginRegistry::get().find(ID_CONVERT_MATERIALS)->command->Execute(doc); }

	// The document's single undo group as (type, node).
	std::vector<std::pair<int32_t, BaseList2D*>> undoRecord() const
	{
		std::vector<std::pair<int32_t, BaseList2D*>> record;
		EXPECT_EQ(doc->GetUndoGroups().size(), 1u);
		for(const UndoEntry& e : doc->GetUndoGroups().at(0))
			record.push_back({e.type, e.node});
		return record;
	}

	// The document's materials in order, the plug-in's marked.
	std::vector<std::string> materialNames() const
	{
		std::vector<std::string> names;
		for(BaseMaterial* mat = doc->GetFirstMaterial(); mat; mat = mat->GetNext())
			names.push_back(mat->GetName().GetStdString() + (mat->GetType() == ID_VELORN_MATERIAL ? "*" : ""));
		return names;
	}
};

// What every target starts from.
BaseContainer freshMaterial()
{
	BaseMaterial* mat = BaseMaterial::Alloc(ID_VELORN_MATERIAL);
	const BaseContainer data = mat->GetData();
	BaseMaterial::Free(mat);
	return data;
}

} // namespace

TEST_F(ConversionTest, KindAndValuesFollowTheChannels)
{
	const Vector colour(0.1, 0.2, 0.3), filter(0.2, 0.4, 0.6);
	const BaseContainer fresh = freshMaterial();
	const struct
	{
		const char* name;
		Values source, expected;
		std::vector<int32_t> unchanged; // keep a fresh material's value
	} cases[] = {
		{"transparency decides before reflection",
			{{MATERIAL_USE_TRANSPARENCY, 1}, {MATERIAL_USE_REFLECTION, 1}, {MATERIAL_TRANSPARENCY_DISPERSION, 1.0},
				{MATERIAL_TRANSPARENCY_BRIGHTNESS, 0.5}},
			{{MAT_TYPE, MAT_TYPE_GLOSSY_TRANSPARENT}, {MAT_EXPONENT_VALUE, 25.0}, {MAT_EXPONENT_B, 15.0},
				{MAT_MEDIUM_IOR, 1.33}, {MAT_ABSORPTION_MODE, MAT_SPECTRUM_RGB}, {MAT_ABSORPTION_RGB_COLOUR, filter},
				{MAT_ABSORPTION_RGB_SCALE, 5.0}, {MAT_USE_MEDIUM, 1}, {MAT_USE_EXPONENT, 1}, {MAT_USE_ALBEDO, 0}},
			{MAT_ALBEDO_COLOUR, MAT_ALBEDO_SCALE, MAT_PHONG_IOR}},
		{"dispersion 0.5", {{MATERIAL_USE_TRANSPARENCY, 1}, {MATERIAL_TRANSPARENCY_DISPERSION, 0.5}},
			{{MAT_TYPE, MAT_TYPE_GLOSSY_TRANSPARENT}, {MAT_EXPONENT_VALUE, 2525.0}, {MAT_EXPONENT_B, 15.0}}, {}},
		{"no dispersion: specular", {{MATERIAL_USE_TRANSPARENCY, 1}, {MATERIAL_TRANSPARENCY_DISPERSION, 0.0}},
			{{MAT_TYPE, MAT_TYPE_SPECULAR}, {MAT_USE_SPECULAR_OPTIONS, 1}, {MAT_USE_EXPONENT, 0}},
			{MAT_EXPONENT_VALUE, MAT_EXPONENT_B}},
		{"transparency brightness missing reads as 1",
			{{MATERIAL_USE_TRANSPARENCY, 1}, {MATERIAL_TRANSPARENCY_BRIGHTNESS, GeData()}},
			{{MAT_ABSORPTION_RGB_SCALE, 10.0}}, {}},
		{"mirror reflection", {{MATERIAL_USE_REFLECTION, 1}, {MATERIAL_REFLECTION_BRIGHTNESS, 0.5}},
			{{MAT_TYPE, MAT_TYPE_PHONG}, {MAT_PHONG_IOR, 3.5}, {MAT_EXPONENT_VALUE, 100000.0}, {MAT_EXPONENT_B, 15.0},
				{MAT_ALBEDO_COLOUR, colour}, {MAT_ALBEDO_SCALE, 0.7}, {MAT_USE_SPECULAR, 1}, {MAT_USE_ALBEDO, 1}},
			{MAT_MEDIUM_IOR}},
		{"blurred reflection",
			{{MATERIAL_USE_REFLECTION, 1}, {MATERIAL_REFLECTION_BRIGHTNESS, 1.0}, {MATERIAL_REFLECTION_DISPERSION, 1.0}},
			{{MAT_PHONG_IOR, 11.0}, {MAT_EXPONENT_VALUE, 25.0}}, {}},
		// 1 + 20 x 0.0070422534, and 50² x 0.025.
		{"specular highlight",
			{{MATERIAL_USE_SPECULAR, 1}, {MATERIAL_SPECULAR_WIDTH, 0.5}, {MATERIAL_SPECULAR_HEIGHT, 0.2}},
			{{MAT_TYPE, MAT_TYPE_PHONG}, {MAT_PHONG_IOR, 1.140845068}, {MAT_EXPONENT_VALUE, 62.5},
				{MAT_EXPONENT_B, 15.0}},
			{}},
		{"Oren-Nayar", {{MATERIAL_USE_SPECULAR, 0}, {MATERIAL_ILLUMINATION_MODEL, 2}},
			{{MAT_TYPE, MAT_TYPE_OREN_NAYAR}, {MAT_ALBEDO_COLOUR, colour}, {MAT_USE_SIGMA, 1}}, {MAT_EXPONENT_VALUE}},
		{"other illumination: diffuse", {{MATERIAL_USE_SPECULAR, 0}, {MATERIAL_ILLUMINATION_MODEL, 1}},
			{{MAT_TYPE, MAT_TYPE_DIFFUSE}, {MAT_ALBEDO_COLOUR, colour}, {MAT_USE_SIGMA, 0}}, {MAT_EXPONENT_VALUE}},
	};
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
		expectValues(*target->GetDataInstance(), c.expected);
		for(int32_t id : c.unchanged)
			EXPECT_TRUE(target->GetDataInstance()->GetData(id) == fresh.GetData(id)) << "parameter " << id;
		BaseMaterial::Free(target);
	}

	// Another kind of source keeps a fresh material's values but gives its name.
	BaseMaterial* other = BaseMaterial::Alloc(ID_VELORN_MATERIAL);
	other->SetName(String("Already Velorn"));
	other->GetDataInstance()->SetInt32(MAT_TYPE, MAT_TYPE_SPECULAR);
	BaseMaterial* target = convertedFrom(other);
	EXPECT_EQ(target->GetName(), String("Already Velorn"));
	EXPECT_TRUE(*target->GetDataInstance() == fresh);
	BaseMaterial::Free(target);
	BaseMaterial::Free(other);
}

TEST_F(ConversionTest, ShadersAreClonedUnderTheTargetByKind)
{
	const struct
	{
		const char* name;
		int32_t channel, shader, link;
	} channels[] = {
		{"colour", MATERIAL_USE_COLOR, MATERIAL_COLOR_SHADER, MAT_ALBEDO_LINK},
		{"glow", MATERIAL_USE_LUMINANCE, MATERIAL_LUMINANCE_SHADER, MAT_EMISSION_LINK},
		{"bumps", MATERIAL_USE_BUMP, MATERIAL_BUMP_SHADER, MAT_BUMP_LINK},
		{"normals", MATERIAL_USE_NORMAL, MATERIAL_NORMAL_SHADER, MAT_NORMAL_MAP_LINK},
		{"heights", MATERIAL_USE_DISPLACEMENT, MATERIAL_DISPLACEMENT_SHADER, MAT_DISPLACEMENT_LINK},
		{"shine", MATERIAL_USE_SPECULARCOLOR, MATERIAL_SPECULAR_COLOR_SHADER, MAT_EXPONENT_LINK},
		{"cutout", MATERIAL_USE_ALPHA, MATERIAL_ALPHA_SHADER, MAT_ALPHA_LINK},
	};
	const struct
	{
		const char* name;
		int32_t transparency;
		double dispersion;
		std::vector<int32_t> empty; // target links the kind leaves empty
	} kinds[] = {
		{"Phong takes all", 0, 0, {}},
		{"glossy transparent", 1, 0.5, {MAT_ALBEDO_LINK, MAT_ALPHA_LINK}},
		{"specular", 1, 0, {MAT_ALBEDO_LINK, MAT_EXPONENT_LINK, MAT_ALPHA_LINK}},
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
			linkColour(source, c.shader, Vector(), c.name);
		}
		BaseMaterial* target = convertedFrom(source);
		const BaseContainer& data = *target->GetDataInstance();
		for(const auto& c : channels)
		{
			SCOPED_TRACE(c.name);
			auto* sh = static_cast<BaseShader*>(data.GetLink(c.link, nullptr, Xbase));
			if(std::count(k.empty.begin(), k.empty.end(), c.link))
			{
				EXPECT_EQ(sh, nullptr);
				continue;
			}
			// A copy that the target owns; the source keeps its own.
			ASSERT_NE(sh, nullptr);
			EXPECT_EQ(sh->GetName(), String(c.name));
			EXPECT_NE(sh, source->GetDataInstance()->GetLink(c.shader, nullptr, Xbase));
			ASSERT_NE(sh->GetListHead(), nullptr);
			EXPECT_EQ(sh->GetListHead()->GetMain(), target);
		}
		expectValues(data, {{MAT_USE_EMISSION, 1}, {MAT_EMISSION_MODE, MAT_SPECTRUM_RGB}, {MAT_EMISSION_RGB_SCALE, 3.0},
			{MAT_USE_BUMP, 1}, {MAT_BUMP_B, 0.2}, {MAT_USE_NORMAL_MAP, 1}, {MAT_USE_DISPLACEMENT, 1},
			{MAT_DISPLACEMENT_B, 0.05}});
		if(k.empty.empty()) // a hard alpha is inverted, its terms stored as longs
			expectValues(data, {{MAT_USE_ALPHA, 1}, {MAT_ALPHA_B, -1}, {MAT_ALPHA_C, 1}});
		BaseMaterial::Free(target);
	}
}

TEST_F(ConversionTest, ChannelsWithoutShadersAndSoftAlphaChangeNothing)
{
	const BaseContainer fresh = freshMaterial();
	BaseMaterial* source = standard("Plain", {{MATERIAL_USE_BUMP, 1}, {MATERIAL_USE_NORMAL, 1},
		{MATERIAL_USE_DISPLACEMENT, 1}, {MATERIAL_USE_ALPHA, 1}, {MATERIAL_USE_LUMINANCE, 1},
		{MATERIAL_LUMINANCE_COLOR, Vector(1, 0.5, 0)}});
	BaseMaterial* target = convertedFrom(source);
	for(int32_t id : {MAT_USE_BUMP, MAT_USE_NORMAL_MAP, MAT_USE_DISPLACEMENT, MAT_USE_ALPHA})
		EXPECT_TRUE(target->GetDataInstance()->GetData(id) == fresh.GetData(id)) << "parameter " << id;
	// The luminance needs no shader.
	expectValues(*target->GetDataInstance(), {{MAT_USE_EMISSION, 1}, {MAT_EMISSION_RGB_COLOUR, Vector(1, 0.5, 0)}});
	BaseMaterial::Free(target);

	source->GetDataInstance()->SetBool(MATERIAL_ALPHA_SOFT, true);
	linkColour(source, MATERIAL_ALPHA_SHADER, Vector(), "Mask");
	target = convertedFrom(source);
	expectValues(*target->GetDataInstance(), {{MAT_USE_ALPHA, 1}, {MAT_ALPHA_B, 1.0}, {MAT_ALPHA_C, 0.0}});
	BaseMaterial::Free(target);
}

TEST_F(ConversionTest, CommandReplacesTheMaterialsAndRecordsItsUndo)
{
	BaseMaterial* red = standard("Red");
	linkColour(red, MATERIAL_COLOR_SHADER, Vector(), "Red paint");
	BaseMaterial* blue = standard("Blue", {{MATERIAL_USE_SPECULAR, 0}, {MATERIAL_ILLUMINATION_MODEL, 2}});
	BaseObject* second = textured(red);
	BaseObject* first = textured(red);
	BaseObject* child = textured(blue, first);
	// A layer of that name inside another layer is not the one searched for.
	LayerObject* archive = LayerObject::Alloc();
	doc->GetLayerObjectRoot()->InsertLast(archive);
	LayerObject* nested = LayerObject::Alloc();
	nested->SetName(String("Old Materials"));
	nested->InsertUnder(archive);

	// Nothing selected: no question, everything converted, new ones in front.
	ASSERT_TRUE(convertCommand());
	EXPECT_TRUE(DialogScript::get().requests().empty());
	EXPECT_EQ(materialNames(), (std::vector<std::string>{"Red*", "Blue*", "Red", "Blue"}));
	BaseMaterial* newRed = doc->GetFirstMaterial();
	BaseMaterial* newBlue = newRed->GetNext();
	EXPECT_EQ(newBlue->GetDataInstance()->GetInt32(MAT_TYPE), MAT_TYPE_OREN_NAYAR);
	ASSERT_NE(newRed->GetFirstShader(), nullptr);

	auto* layer = static_cast<LayerObject*>(archive->GetNext());
	ASSERT_NE(layer, nullptr);
	EXPECT_EQ(layer->GetName(), String("Old Materials"));
	EXPECT_EQ(red->GetLayerObject(doc), layer);
	EXPECT_EQ(blue->GetLayerObject(doc), layer);
	EXPECT_EQ(newRed->GetLayerObject(doc), nullptr);
	EXPECT_EQ(tagOf(first)->GetMaterial(), newRed);
	EXPECT_EQ(tagOf(child)->GetMaterial(), newBlue);
	EXPECT_EQ(tagOf(second)->GetMaterial(), newRed);

	// One undo group: the layer, then from the last material: the new one,
	// the old one, its tags in the order of the tree walk.
	EXPECT_EQ(undoRecord(), (std::vector<std::pair<int32_t, BaseList2D*>>{{UNDOTYPE_NEW, layer},
		{UNDOTYPE_NEW, newBlue}, {UNDOTYPE_CHANGE, blue}, {UNDOTYPE_CHANGE, tagOf(child)}, {UNDOTYPE_NEW, newRed},
		{UNDOTYPE_CHANGE, red}, {UNDOTYPE_CHANGE, tagOf(first)}, {UNDOTYPE_CHANGE, tagOf(second)}}));
	EXPECT_FALSE(doc->IsUndoOpen());
	EXPECT_EQ(EventCount(), 1);

	VelornTest::TempDir dir;
	const Filename file(String(dir.file("converted.json")));
	SaveDocumentFile(*doc, file);
	BaseDocument* loaded = LoadDocumentFile(file);
	ASSERT_NE(loaded, nullptr);
	EXPECT_EQ(WriteDocumentText(*loaded), WriteDocumentText(*doc));
	BaseDocument::Free(loaded);
}

TEST_F(ConversionTest, CommandAsksAboutTheSelection)
{
	ASSERT_TRUE(convertCommand()); // an empty document: nothing happens
	EXPECT_EQ(doc->GetLayerObjectRoot()->GetFirst(), nullptr);
	EXPECT_EQ(EventCount(), 0);

	BaseMaterial* red = standard("Red");
	BaseMaterial* blue = standard("Blue");
	standard("Green");
	doc->SetActiveMaterial(red, SELECTION_NEW);
	doc->SetActiveMaterial(blue, SELECTION_ADD);
	LayerObject* layer = LayerObject::Alloc();
	layer->SetName(String("Old Materials"));
	doc->GetLayerObjectRoot()->InsertLast(layer);

	// Yes: only the selected ones, into the existing layer.
	DialogScript::get().push(DialogAnswer::press(true));
	ASSERT_TRUE(convertCommand());
	ASSERT_EQ(DialogScript::get().requests().size(), 1u);
	EXPECT_EQ(DialogScript::get().requests()[0].title, String("Convert only selected materials?"));
	EXPECT_EQ(materialNames(), (std::vector<std::string>{"Red*", "Blue*", "Red", "Blue", "Green"}));
	EXPECT_EQ(layer->GetNext(), nullptr);
	EXPECT_EQ(blue->GetLayerObject(doc), layer);

	// No: every material, the new ones included.
	DialogScript::get().push(DialogAnswer::press(false));
	ASSERT_TRUE(convertCommand());
	EXPECT_EQ(materialNames().size(), 10u);
}

TEST_F(ConversionTest, NewMaterialCommandAddsOneSelectedMaterial)
{
	doc->SetActiveMaterial(standard("Old"), SELECTION_NEW);
	ASSERT_TRUE(PluginRegistry::get().find(ID_NEW_MATERIAL)->command->Execute(doc));
	BaseMaterial* mat = doc->GetFirstMaterial();
	EXPECT_EQ(mat->GetType(), ID_VELORN_MATERIAL);
	EXPECT_EQ(mat->GetName(), String("Velorn Material"));
	AtomArray active;
	doc->GetActiveMaterials(active);
	ASSERT_EQ(active.GetCount(), 1);
	EXPECT_EQ(active.GetIndex(0), mat);
	EXPECT_EQ(undoRecord(), (std::vector<std::pair<int32_t, BaseList2D*>>{{UNDOTYPE_NEW, mat}}));
	EXPECT_EQ(EventCount(), 1);
}
