// Documents with the plug-in's materials, read while the built module runs
// as in the application.

#include "cli/export_command.h"

#include "c4d/auto_free.h"
#include "c4d/base_document.h"
#include "c4d/base_shader.h"
#include "c4d/description.h"
#include "c4d/document_file.h"
#include "c4d/host_startup.h"
#include "c4d/messages.h"
#include "c4d/plugin_modules.h"
#include "c4d/plugin_registry.h"
#include "materials/material_ids.h"

#include "support/failures.h"
#include "support/file_utils.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

// Gold is a metal with a colour texture; Mix blends Gold and the host's
// Plastic by a mask.
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

// The materials, a camera and a ball that wears the material named worn.
std::string document(const std::string& materials, const std::string& worn = "Mix")
{
	return R"({"version": 1, "materials": )" + materials + R"(, "objects": [
	{"type": 5103, "name": "Camera", "matrix": {"off": [0, 0, -500], "v1": [1, 0, 0], "v2": [0, 1, 0], "v3": [0, 0, 1]}},
	{"type": 5160, "name": "Ball", "tags": [{"type": 5616, "params": [{"id": 1010, "type": "link", "value": ")" +
		worn + R"("}]}]}]})";
}

BaseDocument* read(const std::string& text)
{
	return ReadDocumentText(text, Filename(String("materials.json")));
}

BaseMaterial* materialNamed(const BaseDocument& doc, const char* name)
{
	for(BaseMaterial* mat = doc.GetFirstMaterial(); mat; mat = mat->GetNext())
		if(mat->GetName() == String(name))
			return mat;
	return nullptr;
}

// What the attribute and material managers do with a material, with the
// cycle test among the messages and two enablings that follow shader links.
void exercise(BaseMaterial* mat)
{
	Description description;
	mat->GetDescription(&description);
	for(int32_t message : {MSG_DESCRIPTION_VALIDATE, MSG_UPDATE, MSG_MATERIAL_CHANGED, MSG_MULTI_MARKMATERIALS})
		mat->Message(message);
	for(int32_t id : {MAT_ALBEDO_COLOUR, MAT_ALPHA_A})
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
	}

	void TearDown() override
	{
		modules.end();
		PluginRegistry::get().clear();
		ResetStartupServices();
	}

	PluginModules modules;
};

} // namespace

TEST_F(MaterialDocuments, PluginMaterialsReadSaveBackUnchangedAndOutliveALinkedMaterial)
{
	const AutoFree<BaseDocument> doc(read(document(GOOD_MATERIALS)));
	BaseMaterial* gold = materialNamed(*doc.Get(), "Gold");
	BaseMaterial* mix = materialNamed(*doc.Get(), "Mix");
	BaseMaterial* plastic = materialNamed(*doc.Get(), "Plastic");
	ASSERT_TRUE(gold && mix && plastic);
	// The file's values over the defaults of Init.
	const BaseContainer& goldData = *gold->GetDataInstance();
	EXPECT_EQ(goldData.GetInt32(MAT_TYPE), MAT_TYPE_PHONG);
	EXPECT_EQ(goldData.GetInt32(MAT_PHONG_NK_FILE), 39);
	EXPECT_EQ(goldData.GetFloat(MAT_PHONG_IOR), 1.6);
	// Links by name: materials to materials, channels to the owner's shaders.
	const BaseContainer& mixData = *mix->GetDataInstance();
	EXPECT_EQ(mixData.GetLink(MAT_BLEND_A, doc.Get(), Mbase), gold);
	EXPECT_EQ(mixData.GetLink(MAT_BLEND_B, doc.Get(), Mbase), plastic);
	EXPECT_EQ(mixData.GetLink(MAT_ALPHA_LINK, doc.Get(), Xbase), mix->GetFirstShader());
	EXPECT_EQ(goldData.GetLink(MAT_ALBEDO_LINK, doc.Get(), Xbase), gold->GetFirstShader());
	ASSERT_NE(mix->GetFirstShader()->GetDown(), nullptr);
	EXPECT_EQ(mix->GetFirstShader()->GetDown()->GetName(), String("Mask input"));
	for(BaseMaterial* mat : {gold, mix})
		exercise(mat);

	VelornTest::TempDir dir;
	const Filename saved(String(dir.file("saved.json")));
	SaveDocumentFile(*doc.Get(), saved);
	EXPECT_EQ(WriteDocumentText(*AutoFree<BaseDocument>(LoadDocumentFile(saved)).Get()), WriteDocumentText(*doc.Get()));

	// A link to a freed material reads, writes and reads back as none.
	BaseMaterial::Free(gold);
	EXPECT_EQ(mixData.GetLink(MAT_BLEND_A, doc.Get(), Mbase), nullptr);
	exercise(mix);
	const std::string text = WriteDocumentText(*doc.Get());
	EXPECT_EQ(WriteDocumentText(*AutoFree<BaseDocument>(read(text)).Get()), text);
}

TEST_F(MaterialDocuments, BadMaterialDataIsReadOrRefusedWithItsPlace)
{
	// Odd holds the parameters given and a shader; Other is a plain material.
	const auto odd = [](const std::string& params) {
		return R"([{"type": 1024337, "name": "Odd", "params": [)" + params +
			R"(], "shaders": [{"type": 5832, "name": "Spot"}]}, {"type": 1024337, "name": "Other"}])";
	};
	const std::string blend = R"({"id": 6024, "type": "long", "value": 6030}, )";
	const struct
	{
		const char* name;
		std::string materials;
		std::string refusal = "(no failure)";
	} cases[] = {
		{"unknown kind", odd(R"({"id": 6024, "type": "long", "value": 9999})")},
		{"kind as a string", odd(R"({"id": 6024, "type": "string", "value": "6030"})")},
		{"kind as a string given as long", odd(R"({"id": 6024, "type": "long", "value": "6030"})"),
			"materials.json: materials[0].params[0].value: expected an integer"},
		{"blend input names an object", odd(blend + R"({"id": 6259, "type": "link", "value": "Ball"})")},
		{"blend input names a shader", odd(blend + R"({"id": 6269, "type": "link", "value": "Spot"})")},
		{"textures name a material and an object",
			odd(R"({"id": 6118, "type": "link", "value": "Other"}, {"id": 6052, "type": "link", "value": "Ball"})")},
		{"blend of itself", odd(blend + R"({"id": 6259, "type": "link", "value": "Odd"},
			{"id": 6269, "type": "link", "value": "Odd"}, {"id": 6002, "type": "bool", "value": true})")},
		{"n-k index -1", odd(R"({"id": 6299, "type": "long", "value": -1})")},
		{"n-k index 500", odd(R"({"id": 6299, "type": "long", "value": 500})")},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		AutoFree<BaseDocument> doc;
		EXPECT_EQ(VelornTest::failureOf([&] { doc.Set(read(document(c.materials, "Odd"))); }), c.refusal);
		if(!doc)
			continue;
		BaseMaterial* odd = materialNamed(*doc.Get(), "Odd");
		BaseMaterial* other = materialNamed(*doc.Get(), "Other");
		ASSERT_TRUE(odd && other);
		// Other closes the loop where Odd takes part in one.
		other->GetDataInstance()->SetInt32(MAT_TYPE, MAT_TYPE_BLEND);
		other->GetDataInstance()->SetLink(MAT_BLEND_A, odd);
		exercise(odd);
		exercise(other);
		// Links read by kind: no object or shader is a material, no
		// material or object a shader.
		const BaseContainer& data = *odd->GetDataInstance();
		for(int32_t id : {MAT_BLEND_A, MAT_BLEND_B})
		{
			const BaseList2D* linked = data.GetLink(id, doc.Get(), Mbase);
			EXPECT_TRUE(!linked || linked == odd) << id;
		}
		for(int32_t id : {MAT_ALBEDO_LINK, MAT_ALPHA_LINK})
			EXPECT_EQ(data.GetLink(id, doc.Get(), Xbase), nullptr) << id;
		// The n-k index lies within the list of 203 files after a description.
		const int32_t nk = data.GetInt32(MAT_PHONG_NK_FILE);
		EXPECT_TRUE(nk >= 0 && nk < 203) << nk;
		const std::string text = WriteDocumentText(*doc.Get());
		EXPECT_EQ(WriteDocumentText(*AutoFree<BaseDocument>(read(text)).Get()), text);
	}
}

TEST(MaterialDocumentExport, DocumentWithPluginMaterialsExports)
{
	VelornTest::TempDir dir;
	ExportCommand::Options options;
	options.document = dir.file("materials.json");
	options.scene = dir.file("out/materials.vls");
	options.plugins = VELORN_PLUGIN_DIR;
	VelornTest::writeFile(options.document, document(GOOD_MATERIALS));
	EXPECT_EQ(ExportCommand::run(options), "Wrote " + options.scene);
	EXPECT_TRUE(Velorn::FileUtils::fileExists(options.scene));
}
