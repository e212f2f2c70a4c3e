// Documents with the plug-in's materials exported through the material
// export that the material plug-in installs, compared with scenes worked out
// by hand, and read back by the scene reader.

#include "c4d/auto_free.h"
#include "c4d/console.h"
#include "c4d/document_file.h"
#include "c4d/plugin_test_helpers.h"
#include "host/plugin_ids.h"
#include "cli/scene_commands.h"
#include "export/material_hooks.h"
#include "host/camera_tag.h"
#include "export/scene_exporter.h"
#include "materials/material_export.h"
#include "materials/material_test_helpers.h"
#include "shaders/shader_plugins.h"

#include "reader/scene_parser.h"
#include "scene/materials_basic.h"
#include "scene/materials_composite.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_root.h"
#include "scene/scene_node_sphere.h"
#include "support/failures.h"
#include "support/file_utils.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <sstream>
#include <string>

namespace
{

// The material, medium and sphere elements of a scene text (or the named
// elements), one tab less indented, each followed by an empty line: what
// material export decides.
std::string materialElements(const std::string& scene,
	std::initializer_list<const char*> elements = {"material", "medium", "sphere"})
{
	std::istringstream lines(scene);
	std::string line, out, closing;
	while(std::getline(lines, line))
	{
		if(closing.empty())
		{
			for(const char* element : elements)
				if(line == std::string("\t<") + element + ">")
					closing = std::string("\t</") + element + ">";
			if(closing.empty())
				continue;
		}
		out += line.substr(line.compare(0, 1, "\t") == 0 ? 1 : 0) + "\n";
		if(line == closing)
		{
			out += "\n";
			closing.clear();
		}
	}
	return out;
}

BaseMaterial* findMaterial(BaseDocument& document, const char* name)
{
	for(BaseMaterial* m = document.GetFirstMaterial(); m; m = m->GetNext())
		if(m->GetName() == String(name))
			return m;
	return nullptr;
}

class MaterialExport : public MaterialTest
{
protected:
	void SetUp() override
	{
		MaterialTest::SetUp();
		// The camera tag gives the scene its tone mapping.
		ASSERT_TRUE(RegisterCameraTag());
		registerPlainPlugins(PluginKind::VideoPost, {ID_VIDEO_POST});
		// Documents whose channels hold the plug-in's own shaders.
		ASSERT_TRUE(RegisterVslShader() && RegisterVslNoise() && RegisterVslBlend() && RegisterVslGradient() &&
			RegisterVslNormal());
	}

	// The root of tests/data/materials/<name>.json as the driver leaves it,
	// neither finalised nor written; prepare, when given, changes the loaded
	// document first.
	Velorn::Reference<Velorn::SceneNodeRoot> exportRoot(
		const std::string& name, const std::function<void(BaseDocument&)>& prepare = nullptr)
	{
		const std::string path = VelornTest::testDataPath("data/materials/" + name + ".json");
		AutoFree<BaseDocument> document(LoadDocumentFile(Filename(path.c_str())));
		EXPECT_TRUE(document);
		if(!document)
			return nullptr;
		if(prepare)
			prepare(*document.Get());
		// As the export command does: generators build their caches first.
		document->ExecutePasses(nullptr, true, true, true, 0);
		scene_path = dir.file(name + ".vls");
		ExportSettings settings(document.Get(), Filename(scene_path.c_str()), nullptr, 0, 320, 240, 0, 0, 0, 0);
		const Velorn::Reference<Velorn::SceneNodeRoot> root = SceneExporter(&settings).exportScene();
		EXPECT_TRUE(root.nonNull());
		// Pass 1 empties the map when it ends.
		EXPECT_TRUE(settings.material_map.empty());
		return root;
	}

	// The scene's text, exported as the export command does: finalised and
	// written.
	std::string exportDocument(const std::string& name)
	{
		const Velorn::Reference<Velorn::SceneNodeRoot> root = exportRoot(name);
		if(root.isNull())
			return std::string();
		root->finalise(scene_path);
		root->writeToFile(scene_path, false, nullptr);
		return VelornTest::readFile(scene_path);
	}

	void expectSceneChecks() const
	{
		EXPECT_EQ(VelornTest::failureOf([&] { Velorn::SceneCommands::check(scene_path); }), "(no failure)");
	}

	static bool printed(const std::string& line)
	{
		const std::vector<String> lines = HostConsole::get().texts(HostConsole::Kind::Print);
		return std::find(lines.begin(), lines.end(), String(line.c_str())) != lines.end();
	}

	// The UID of the material node "Lamp" and the root's last model.
	static std::pair<Velorn::UID, const Velorn::SceneNodeModel*> lampAndModel(const Velorn::SceneNodeRoot& root)
	{
		Velorn::UID lamp;
		const Velorn::SceneNodeModel* box = nullptr;
		for(const Velorn::Reference<Velorn::SceneNode>& child : root.getChildren())
		{
			if(child->getName() == Velorn::String("Lamp"))
				lamp = child->uid;
			if(const auto* model = dynamic_cast<const Velorn::SceneNodeModel*>(child.getPointer()))
				box = model;
		}
		return {lamp, box};
	}

	VelornTest::TempDir dir;
	std::string scene_path;
};

} // namespace

// Each document's materials as worked out from the plug-in's parameters;
// the scene passes the reader's check, and what the reader reads back
// writes the same elements again.
TEST_F(MaterialExport, DocumentsExportTheirMaterials)
{
	ASSERT_NE(GetMaterialExportHooks(), nullptr);
	for(const char* name :
		{"diffuse", "phong", "blend", "alpha", "medium", "coating", "clay_blend", "tabulated", "blackbody_absorption",
			"kinds", "media"})
	{
		SCOPED_TRACE(name);
		const std::string scene = exportDocument(name);
		VelornTest::expectMatchesGolden(materialElements(scene), std::string("materials/") + name + ".xml");

		expectSceneChecks();
		Velorn::SceneParser parser;
		Velorn::Reference<Velorn::SceneNodeRoot> read = parser.parseFile(scene_path, "");
		read->finalise(scene_path);
		const std::string again = dir.file(std::string(name) + "_again.vls");
		read->writeToFile(again, false, nullptr);
		// The reader joins texture paths to the scene's directory.
		std::string read_back = VelornTest::readFile(again);
		const std::string joined = "<path>" + dir.file("");
		for(size_t at = read_back.find(joined); at != std::string::npos; at = read_back.find(joined, at))
			read_back.replace(at, joined.size(), "<path>");
		EXPECT_EQ(materialElements(read_back), materialElements(scene));
	}
}

// Without the material plug-in's export the objects take the default
// material, as before material export existed.
TEST_F(MaterialExport, WithoutTheHooksObjectsTakeTheDefaultMaterial)
{
	SetMaterialExportHooks(nullptr);
	const std::string scene = exportDocument("alpha");
	InstallMaterialExport();
	const std::string elements = materialElements(scene);
	EXPECT_EQ(elements.find("<name>Red</name>"), std::string::npos);
	EXPECT_NE(elements.find("<material_uid>7</material_uid>"), std::string::npos);
}

// A blend whose inputs are the blend itself: the map holds its node before
// the inputs are exported, so the export ends with one node for it; the
// links back to it become nullMat, so that the scene can be finalised.
TEST_F(MaterialExport, SelfBlendEndsAfterOnePass)
{
	const Velorn::Reference<Velorn::SceneNodeRoot> root = exportRoot("loop");
	ASSERT_TRUE(root.nonNull());
	std::vector<const Velorn::SceneNodeMaterial*> loops;
	Velorn::UID null_material;
	for(const Velorn::Reference<Velorn::SceneNode>& child : root->getChildren())
		if(const auto* node = dynamic_cast<const Velorn::SceneNodeMaterial*>(child.getPointer()))
		{
			if(node->getName() == Velorn::String("nullMat"))
				null_material = node->uid;
			if(node->getName() == Velorn::String("Loop"))
				loops.push_back(node);
		}
	ASSERT_EQ(loops.size(), 1u);
	EXPECT_EQ(loops[0]->uid, Velorn::UID(8));
	EXPECT_TRUE(null_material.valid());
	const auto& blend = dynamic_cast<const Velorn::BlendMaterial&>(*loops[0]->material);
	EXPECT_EQ(blend.a_mat_uid, null_material);
	EXPECT_EQ(blend.b_mat_uid, null_material);
	// Ball B wears it.
	const auto& sphere = dynamic_cast<const Velorn::SceneNodeSphere&>(*root->getChildren().back());
	EXPECT_EQ(sphere.material_uid, Velorn::UID(8));
	EXPECT_TRUE(printed("Material 'Loop' links back to itself; the link was replaced by the default for an empty link."));
	root->finalise(scene_path);
}

// The box wears the emitting material Lamp, whose emission scale its model
// carries. With its IES profile, switch 1 and a file give a profile on the
// model for that material, its path as seen from the scene's directory; any
// other switch value, or no file, gives none.
TEST_F(MaterialExport, ModelEmissionScaleAndMaterialIESProfile)
{
	// Paths with the system's separator, as the host's file names have them.
	using Velorn::FileUtils::join;
	const std::string below = dir.file("ies/lamp.ies");
	const std::string beside = join(Velorn::FileUtils::getDirectory(dir.path()), "lamp.ies");
	const struct
	{
		const char* what;
		int32_t on;
		std::string file;
		std::string expected; // empty: no profile
	} cases[] = {
		{"a profile below the scene", 1, below, join("ies", "lamp.ies")},
		{"a profile beside the scene's directory", 1, beside, join("..", "lamp.ies")},
		{"the switch off", 0, below, ""},
		{"a switch value other than 1", 2, below, ""},
		{"no file", 1, "", ""},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.what);
		const Velorn::Reference<Velorn::SceneNodeRoot> root = exportRoot("environment", [&](BaseDocument& document) {
			BaseMaterial* lamp = findMaterial(document, "Lamp");
			ASSERT_NE(lamp, nullptr);
			lamp->GetDataInstance()->SetInt32(MAT_IES_ON, c.on);
			lamp->GetDataInstance()->SetFilename(MAT_IES_FILE, Filename(c.file.c_str()));
		});
		ASSERT_TRUE(root.nonNull());
		const auto [lamp, box] = lampAndModel(*root);
		ASSERT_TRUE(lamp.valid());
		ASSERT_NE(box, nullptr);
		ASSERT_EQ(box->material_uids.size(), 1u);
		EXPECT_EQ(box->material_uids[0], lamp);
		ASSERT_EQ(box->emission_scales.size(), 1u);
		EXPECT_EQ(box->emission_scales[0]->material_uid, lamp);
		EXPECT_EQ(box->emission_scales[0]->measure, Velorn::EmissionScale::LuminousIntensity);
		EXPECT_EQ(box->emission_scales[0]->value, 50.0);
		if(c.expected.empty())
		{
			EXPECT_TRUE(box->ies_profiles.empty());
			continue;
		}
		ASSERT_EQ(box->ies_profiles.size(), 1u);
		EXPECT_EQ(box->ies_profiles[0]->material_uid, lamp);
		EXPECT_EQ(box->ies_profiles[0]->path.str(), c.expected);
	}
}

// Bad input: each document exports to the end, the console says what was
// replaced, and the written scene passes the reader's check.
TEST_F(MaterialExport, BadInputIsReplacedAndReported)
{
	const struct
	{
		const char* document;
		std::vector<std::string> lines;
		// A text the written scene holds, when given.
		const char* holds = nullptr;
	} cases[] = {
		{"bad_kind", {"Material 'Odd' is of unknown kind 9999; it was exported as a plain diffuse material."}},
		{"bad_medium_kind", {"Medium 'FogMed' is of unknown kind 9999; it was exported as a basic medium."}},
		{"bad_emission_mode",
			{"Material 'Glow' has an unknown emission spectrum mode 9999; its base emission was left out."}},
		{"bad_medium_modes",
			{"Medium 'HazeMed' has an unknown absorption spectrum mode 9999; the absorption was set to zero.",
				"Medium 'HazeMed' has an unknown scattering spectrum mode 9999; the scattering was set to zero.",
				"Medium 'HazeMed' has an unknown phase function kind 9999; it was exported with a uniform phase "
				"function."}},
		{"object_link",
			{"Material 'Mix' links to 'A', which is not a material; the link was replaced by the default for an empty "
			 "link."},
			"<a_mat_uid>6</a_mat_uid>"},
		// The name reaches no file: it stands in the scene as it is, escaped.
		{"path_name", {}, "<name>Dir/Sub\\Mat:&lt;1&gt;&amp;&quot;x&quot;</name>"},
		{"missing_texture",
			{"Material 'Wood': the texture file 'gone.png' was not found; the scene names it as it stands."}},
		{"table_range",
			{"Material 'Lamp': the tabulated spectrum from 450 nm to 650 nm does not cover 400 nm to 700 nm, which "
			 "the reader needs; it now runs from 400 nm to 700 nm."},
			"<start_wavelength>4e-7</start_wavelength>"},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.document);
		HostConsole::get().clear();
		const std::string scene = exportDocument(c.document);
		ASSERT_FALSE(scene.empty());
		for(const std::string& line : c.lines)
			EXPECT_TRUE(printed(line)) << line;
		if(c.holds)
		{
			EXPECT_NE(scene.find(c.holds), std::string::npos) << c.holds;
		}
		expectSceneChecks();
	}
}

// The environment material on the background: its emission scale without a
// material UID, and its diffuse body without albedo, as worked out by hand
// in the golden scene; the scene passes the reader's check.
TEST_F(MaterialExport, EnvironmentBackgroundGolden)
{
	const std::string scene = exportDocument("environment");
	VelornTest::expectMatchesGolden(
		materialElements(scene, {"background_settings"}), "materials/environment_background.xml");
	expectSceneChecks();
}
