// Documents that hold the plug-in's materials, read while the built module
// runs as in the application: good ones read, export, save and read back
// unchanged; bad ones are read or refused with their place, and whatever is
// read survives the material's description, validation and link messages.

#include "cli/export_command.h"

#include "c4d/base_document.h"
#include "c4d/base_shader.h"
#include "c4d/description.h"
#include "c4d/document_file.h"
#include "c4d/host_startup.h"
#include "c4d/messages.h"
#include "c4d/plugin_modules.h"
#include "c4d/plugin_registry.h"
#include "c4d/texture_tag.h"
#include "materials/material_ids.h"

#include "support/exceptions.h"
#include "support/failures.h"
#include "support/file_utils.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>

namespace
{

const int32_t ID_VELORN_MATERIAL = 1024337;

// Gold is a metal with a colour texture; Mix blends Gold and the host's
// Plastic by a mask; a ball wears Mix.
const std::string GOOD_MATERIALS = R"([
	{"type": 1024337, "name": "Gold", "params": [
		{"id": 6024, "type": "long", "value": 6027},
		{"id": 6144, "type": "bool", "value": true},
		{"id": 6299, "type": "long", "value": 39},
		{"id": 6118, "type": "link", "value": "Grain"}],
	 "shaders": [{"type": 5832, "name": "Grain", "params": [{"id": 1000, "type": "vector", "value": [1, 0.8, 0.3]}]}]},
	{"type": 1024337, "name": "Mix", "params": [
		{"id": 6024, "type": "long", "value": 6030},
		{"id": 6259, "type": "link", "value": "Gold"},
		{"id": 6269, "type": "link", "value": "Plastic"},
		{"id": 6052, "type": "link", "value": "Mask"}],
	 "shaders": [{"type": 5832, "name": "Mask", "children": [{"type": 5832, "name": "Mask input"}]}]},
	{"type": 5703, "name": "Plastic", "params": [{"id": 2100, "type": "vector", "value": [0.2, 0.3, 0.9]}]}
])";

// A camera and a ball that wears the material named worn.
std::string objects(const std::string& worn)
{
	return R"([
	{"type": 5103, "name": "Camera", "matrix": {"off": [0, 0, -500], "v1": [1, 0, 0], "v2": [0, 1, 0], "v3": [0, 0, 1]}},
	{"type": 5160, "name": "Ball", "tags": [{"type": 5616, "name": "Ball texture",
		"params": [{"id": 1010, "type": "link", "value": ")" + worn + R"("}]}]}
])";
}

std::string document(const std::string& materials, const std::string& worn = "Mix")
{
	return R"({"version": 1, "materials": )" + materials + R"(, "objects": )" + objects(worn) + "}";
}

struct FreeDocument
{
	void operator()(BaseDocument* doc) const { BaseDocument::Free(doc); }
};
using DocumentPtr = std::unique_ptr<BaseDocument, FreeDocument>;

BaseMaterial* materialNamed(const BaseDocument& doc, const char* name)
{
	for(BaseMaterial* mat = doc.GetFirstMaterial(); mat; mat = mat->GetNext())
		if(mat->GetName() == String(name))
			return mat;
	return nullptr;
}

// What the attribute manager and the material manager do with a material:
// its description, the validation after a change, the enabling of a few
// parameters and the messages that follow its links.
void exercise(BaseMaterial* mat)
{
	Description description;
	mat->GetDescription(&description);
	mat->Message(MSG_DESCRIPTION_VALIDATE);
	mat->Message(MSG_UPDATE);
	mat->Message(MSG_MATERIAL_CHANGED);
	mat->Message(MSG_MULTI_MARKMATERIALS);
	// Each asks the description again: two that follow a shader link.
	for(int32_t id : std::initializer_list<int32_t>{MAT_ALBEDO_COLOUR, MAT_ALPHA_A})
		mat->IsParameterEnabled(DescID(id));
}

// The module started from the build's plug-in directory.
class MaterialDocuments : public testing::Test
{
protected:
	void SetUp() override
	{
		PluginRegistry::get().clear();
		ResetStartupServices();
		ASSERT_EQ(modules.start(Filename(String(VELORN_PLUGIN_DIR))), 1);
		ASSERT_NE(PluginRegistry::get().find(ID_VELORN_MATERIAL), nullptr);
	}

	void TearDown() override
	{
		modules.end();
		PluginRegistry::get().clear();
		ResetStartupServices();
	}

	static DocumentPtr read(const std::string& text)
	{
		return DocumentPtr(ReadDocumentText(text, Filename(String("materials.json"))));
	}

	PluginModules modules;
};

} // namespace

TEST_F(MaterialDocuments, PluginMaterialsReadAndReadBackUnchanged)
{
	const DocumentPtr doc = read(document(GOOD_MATERIALS));
	BaseMaterial* gold = materialNamed(*doc, "Gold");
	BaseMaterial* mix = materialNamed(*doc, "Mix");
	BaseMaterial* plastic = materialNamed(*doc, "Plastic");
	ASSERT_TRUE(gold && mix && plastic);
	EXPECT_EQ(mix->GetType(), ID_VELORN_MATERIAL);
	// The file's values over the defaults of Init.
	const BaseContainer& goldData = *gold->GetDataInstance();
	EXPECT_EQ(goldData.GetInt32(MAT_TYPE), MAT_TYPE_PHONG);
	EXPECT_EQ(goldData.GetInt32(MAT_PHONG_NK_FILE), 39);
	EXPECT_EQ(goldData.GetFloat(MAT_PHONG_IOR), 1.6);
	EXPECT_EQ(goldData.GetFloat(MAT_ALBEDO_SCALE), 0.8);
	// Links by name: materials to materials, channels to the owner's shaders.
	const BaseContainer& mixData = *mix->GetDataInstance();
	EXPECT_EQ(mixData.GetLink(MAT_BLEND_A, doc.get(), Mbase), gold);
	EXPECT_EQ(mixData.GetLink(MAT_BLEND_B, doc.get(), Mbase), plastic);
	EXPECT_EQ(mixData.GetLink(MAT_ALPHA_LINK, doc.get(), Xbase), mix->GetFirstShader());
	EXPECT_EQ(goldData.GetLink(MAT_ALBEDO_LINK, doc.get(), Xbase), gold->GetFirstShader());
	ASSERT_NE(mix->GetFirstShader()->GetDown(), nullptr);
	EXPECT_EQ(mix->GetFirstShader()->GetDown()->GetName(), String("Mask input"));

	for(BaseMaterial* mat : {gold, mix})
		exercise(mat);
	// The blend uses both inputs: marking reaches them.
	gold->DelBit(BIT_MATMARK);
	plastic->DelBit(BIT_MATMARK);
	mix->Message(MSG_MULTI_MARKMATERIALS);
	EXPECT_TRUE(gold->GetBit(BIT_MATMARK));
	EXPECT_TRUE(plastic->GetBit(BIT_MATMARK));

	const std::string text = WriteDocumentText(*doc);
	const DocumentPtr again = read(text);
	EXPECT_EQ(WriteDocumentText(*again), text);
	VelornTest::TempDir dir;
	SaveDocumentFile(*again, Filename(String(dir.file("saved.json"))));
	const DocumentPtr loaded(LoadDocumentFile(Filename(String(dir.file("saved.json")))));
	EXPECT_EQ(WriteDocumentText(*loaded), text);
	EXPECT_EQ(materialNamed(*loaded, "Mix")->GetDataInstance()->GetLink(MAT_BLEND_A, loaded.get(), Mbase),
		materialNamed(*loaded, "Gold"));
}

TEST_F(MaterialDocuments, BadMaterialDataIsReadOrRefusedWithItsPlace)
{
	const auto material = [](const std::string& params) {
		return R"([{"type": 1024337, "name": "Odd", "params": [)" + params +
			R"(], "shaders": [{"type": 5832, "name": "Spot"}]}, {"type": 1024337, "name": "Other"}])";
	};
	const struct
	{
		const char* name;
		std::string materials;
		// The whole message; empty when the document reads.
		std::string refusal;
	} cases[] = {
		{"unknown kind", material(R"({"id": 6024, "type": "long", "value": 9999})"), ""},
		{"kind as a string", material(R"({"id": 6024, "type": "string", "value": "6030"})"), ""},
		{"kind as a string given as long", material(R"({"id": 6024, "type": "long", "value": "6030"})"),
			"materials.json: materials[0].params[0].value: expected an integer"},
		{"blend input names an object",
			material(R"({"id": 6024, "type": "long", "value": 6030}, {"id": 6259, "type": "link", "value": "Ball"})"),
			""},
		{"blend input names a shader",
			material(R"({"id": 6024, "type": "long", "value": 6030}, {"id": 6269, "type": "link", "value": "Spot"})"),
			""},
		{"albedo texture names a material",
			material(R"({"id": 6118, "type": "link", "value": "Other"}, {"id": 6052, "type": "link", "value": "Ball"})"),
			""},
		{"blend of itself",
			material(R"({"id": 6024, "type": "long", "value": 6030}, {"id": 6259, "type": "link", "value": "Odd"},
				{"id": 6269, "type": "link", "value": "Odd"}, {"id": 6002, "type": "bool", "value": true})"),
			""},
		{"coating over itself through another",
			material(R"({"id": 6024, "type": "long", "value": 6300}, {"id": 6306, "type": "link", "value": "Other"})"),
			""},
		{"n-k index -1", material(R"({"id": 6299, "type": "long", "value": -1})"), ""},
		{"n-k index 500", material(R"({"id": 6299, "type": "long", "value": 500})"), ""},
		{"n-k name that is no file", material(R"({"id": 6145, "type": "string", "value": "nothing.nk"})"), ""},
		{"link to nothing", material(R"({"id": 6259, "type": "link", "value": "Gone"})"),
			"materials.json: materials[0].params[0].value: the link names 'Gone', but there is no object, material, "
			"shader or layer of that name"},
		{"unknown material type", R"([{"type": 1024338, "name": "Odd"}])",
			"materials.json: materials[0].type: unknown material type 1024338: neither a type of the host nor a "
			"registered plug-in"},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		DocumentPtr doc;
		EXPECT_EQ(VelornTest::failureOf([&] { doc = read(document(c.materials, "Odd")); }),
			c.refusal.empty() ? "(no failure)" : c.refusal);
		if(!doc)
			continue;
		BaseMaterial* odd = materialNamed(*doc, "Odd");
		BaseMaterial* other = materialNamed(*doc, "Other");
		ASSERT_TRUE(odd && other);
		// Let the other material close the loop where it takes part in one.
		other->GetDataInstance()->SetInt32(MAT_TYPE, MAT_TYPE_BLEND);
		other->GetDataInstance()->SetLink(MAT_BLEND_A, odd);
		exercise(odd);
		exercise(other);
		const BaseContainer& data = *odd->GetDataInstance();
		// Links read by kind: nothing that is not a material is a material,
		// nothing that is not a shader a shader.
		for(int32_t id : std::initializer_list<int32_t>{MAT_BLEND_A, MAT_BLEND_B, MAT_COAT_SUBSTRATE})
		{
			BaseList2D* linked = data.GetLink(id, doc.get(), Mbase);
			EXPECT_TRUE(!linked || linked == odd || linked == other) << id;
		}
		for(int32_t id : std::initializer_list<int32_t>{MAT_ALBEDO_LINK, MAT_ALPHA_LINK})
			EXPECT_EQ(data.GetLink(id, doc.get(), Xbase), nullptr) << id;
		// The n-k choice is within the list after a description.
		const int32_t nk = data.GetInt32(MAT_PHONG_NK_FILE);
		EXPECT_TRUE(nk >= 0 && nk < 203) << nk;
		EXPECT_EQ(WriteDocumentText(*read(WriteDocumentText(*doc))), WriteDocumentText(*doc));
	}
}

TEST_F(MaterialDocuments, LinkToAFreedMaterialReadsAsNone)
{
	const DocumentPtr doc = read(document(GOOD_MATERIALS));
	BaseMaterial* gold = materialNamed(*doc, "Gold");
	BaseMaterial* mix = materialNamed(*doc, "Mix");
	BaseMaterial::Free(gold);
	EXPECT_EQ(mix->GetDataInstance()->GetLink(MAT_BLEND_A, doc.get(), Mbase), nullptr);
	exercise(mix);
	for(BaseMaterial* mat = doc->GetFirstMaterial(); mat; mat = mat->GetNext())
		exercise(mat);
	// The empty link is written as none and read back so.
	const std::string text = WriteDocumentText(*doc);
	const DocumentPtr again = read(text);
	EXPECT_EQ(WriteDocumentText(*again), text);
	EXPECT_EQ(materialNamed(*again, "Mix")->GetDataInstance()->GetLink(MAT_BLEND_A), nullptr);
}

TEST(MaterialDocumentExport, DocumentWithPluginMaterialsExports)
{
	VelornTest::TempDir dir;
	const std::string file = dir.file("materials.json");
	VelornTest::writeFile(file, document(GOOD_MATERIALS));
	ExportCommand::Options options;
	options.document = file;
	options.scene = dir.file("out/materials.vls");
	options.plugins = VELORN_PLUGIN_DIR;
	EXPECT_EQ(ExportCommand::run(options), "Wrote " + options.scene);
	EXPECT_TRUE(Velorn::FileUtils::fileExists(options.scene));
}
