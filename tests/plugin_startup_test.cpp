// The plug-in module as the host loads it: start-up lines, registrations,
// preview scenes, menus and the module's init count.

#include "c4d/console.h"
#include "c4d/host_startup.h"
#include "c4d/menus.h"
#include "c4d/plugin_entry.h"
#include "c4d/plugin_modules.h"
#include "c4d/plugin_registry.h"
#include "c4d/preview_scenes.h"
#include "c4d/resources.h"

#include "support/file_utils.h"
#include "support/platform.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace
{

using Lines = std::vector<std::string>;

const std::string BANNER =
	".__.--._.-._.-.__.--._.-.__.--._.-._.-.__.--._.-.__.--._.-._.-.__.--._.-.__.--._.-._.-.__.--._.-.__.--._.-._.-.__.--._.-.__.--.";

// The plug-ins that exist, in the order of the registration table.
const std::vector<int32_t> REGISTERED = {1020892, 1021223, 1022083, 1022667, 1029978, 1024339, 1024338, 1020894,
	1021852, 1022469, 1023920, 1023984, 1024454, 1023696, 1023695, 1027825, 1023599, 1022273, 1028908, 1020896, 1022283,
	1023863, 1024337, 1024768, 1024769, 1024770, 1029836, 1027562};

// A copy of the built plug-in (module and res folder) in a directory of its
// own, whose resource a test may change before the host loads it.
class InstalledPlugin : public testing::Test
{
protected:
	void SetUp() override
	{
		HostConsole::get().clear();
		PluginRegistry::get().clear();
		ResetStartupServices();
		copyFile("velorn.cdl");
		copyFile("res/strings_us/c4d_strings.str");
		copyFile("res/materialpreview/sphere.json");
	}

	void TearDown() override
	{
		modules.end();
		PluginRegistry::get().clear();
		ResetStartupServices();
	}

	std::string pluginDir() const { return dir.file("velorn"); }
	std::string file(const std::string& relative) const { return pluginDir() + "/" + relative; }

	void copyFile(const std::string& relative)
	{
		Velorn::FileUtils::createDirsForPath(Velorn::FileUtils::getDirectory(file(relative)));
		VelornTest::writeFile(file(relative), VelornTest::readFile(std::string(VELORN_PLUGIN_DIR) + "/" + relative));
	}

	// The resource with the line of one string id taken out.
	void dropString(int32_t id)
	{
		std::string kept;
		const std::string text = VelornTest::readFile(file("res/strings_us/c4d_strings.str"));
		for(size_t start = 0, end; start < text.size(); start = end + 1)
		{
			end = text.find('\n', start);
			const std::string line = text.substr(start, end - start);
			if(line.rfind(std::to_string(id) + " ", 0) != 0)
				kept += line + "\n";
		}
		VelornTest::writeFile(file("res/strings_us/c4d_strings.str"), kept);
	}

	// The data of a new tag of the kind.
	static BaseContainer initialData(int32_t tag_id)
	{
		BaseTag* tag = BaseTag::Alloc(tag_id);
		EXPECT_NE(tag, nullptr) << tag_id;
		if(!tag)
			return BaseContainer();
		const BaseContainer data = *tag->GetDataInstance();
		BaseTag::Free(tag);
		return data;
	}

	static Lines printed()
	{
		Lines lines;
		for(const String& text : HostConsole::get().texts(HostConsole::Kind::Print))
			lines.push_back(text.GetStdString());
		return lines;
	}

	VelornTest::TempDir dir;
	PluginModules modules;
};

} // namespace

TEST_F(InstalledPlugin, StartsWithItsLinesRegistrationsAndPreviewScenes)
{
	ASSERT_EQ(modules.start(Filename(String(dir.path().c_str()))), 1);

	const Lines expected = {
		"Loading velorn from: " + pluginDir(),
		// No SDK library beside the module: reported, and start-up goes on.
		"Failed initialising Velorn sdk (error code: 20):",
		"Failed to load DLL from '" + pluginDir() + "' (Error code: 2)",
		"",
		BANNER,
		"._.-.Velorn for Cinema 4D 3.6.24",
		"Documentation: docs/ in the plug-in's source, and README.md",
		BANNER,
	};
	EXPECT_EQ(printed(), expected);

	EXPECT_EQ(PluginRegistry::get().ids(), REGISTERED);
	const PluginRegistry& registry = PluginRegistry::get();
	EXPECT_EQ(registry.find(1023984)->help, String("Creates Instances"));
	EXPECT_EQ(registry.find(1023599)->name, String("Velorn Interactive Tonemapping Dialog"));
	EXPECT_EQ(registry.find(1023599)->help, String("Velorn Tonemapping"));
	EXPECT_EQ(registry.find(1023599)->info, 0x20000000);
	EXPECT_EQ(registry.find(1022273)->info, 0x20000004);
	EXPECT_EQ(registry.find(1028908)->description, String("Ovelornsectionplane"));
	EXPECT_EQ(registry.find(1023863)->name, String("Velorn VSL Shader"));
	EXPECT_EQ(registry.find(1024770)->description, String("xvslgradient"));
	EXPECT_EQ(registry.find(1022083)->name, String("Velorn Camera Tag"));
	EXPECT_EQ(registry.find(1029978)->description, String("TVelornCompositing"));
	EXPECT_EQ(registry.find(1020892)->icon.GetFile().GetString(), String("LightTag.tif"));
	EXPECT_EQ(registry.find(1020896)->description, String("ovelornrendersettings"));
	EXPECT_EQ(registry.find(1020896)->priority, 100);
	EXPECT_EQ(registry.find(1022283)->name, String());
	EXPECT_EQ(registry.find(1022283)->help, String("#$3 --"));
	const PluginRecord* convert = registry.find(1021852);
	EXPECT_EQ(convert->name, String("Convert Materials to Velorn"));
	EXPECT_EQ(convert->help, String("Convert Materials"));
	EXPECT_EQ(convert->icon.GetFile().GetString(), String("ConvertMats.tif"));
	EXPECT_EQ(convert->info, 0);
	const PluginRecord* import = registry.find(1022469);
	EXPECT_EQ(import->help, String("Import .vlm"));
	EXPECT_EQ(import->icon.GetFile().GetString(), String("Export.tif"));
	const PluginRecord* newMaterial = registry.find(1024454);
	EXPECT_EQ(newMaterial->help, String("New Velorn Material"));
	EXPECT_EQ(newMaterial->icon.GetFile().GetString(), String("materialhelper.tif"));
	EXPECT_EQ(newMaterial->info, 0x10000000);

	const std::vector<PreviewScene> scenes = PreviewScenes::get().of(1024337);
	ASSERT_EQ(scenes.size(), 1u);
	EXPECT_EQ(scenes[0].file.GetFile().GetString(), String("sphere.json"));
	ASSERT_NE(scenes[0].document, nullptr);
	EXPECT_NE(scenes[0].document->GetFirstObject(), nullptr);

	// Tags made now hold their Init values: the light tag an RGB emission of
	// white at gain 2.2, measured as luminance 100 when scaled.
	const BaseContainer camera = initialData(1022083), light = initialData(1020892), subdivision = initialData(1022667);
	EXPECT_EQ(camera.GetInt32(1917), 1908);
	EXPECT_EQ(light.GetInt32(1215), 1217);
	EXPECT_EQ(light.GetVector(1227), Vector(1, 1, 1));
	EXPECT_EQ(light.GetFloat(1228), 2.2);
	EXPECT_EQ(light.GetInt32(1300), 1305);
	EXPECT_EQ(light.GetFloat(1301), 100.0);
	EXPECT_FALSE(light.GetBool(1312));
	EXPECT_EQ(subdivision.GetInt32(1501), 3);
	EXPECT_EQ(subdivision.GetFloat(1503), 0.1);
	EXPECT_EQ(subdivision.GetDataPointer(1502), nullptr);
}

TEST_F(InstalledPlugin, MissingNameSkipsItsPluginAndBadPreviewSceneIsReported)
{
	dropString(10009);
	VelornTest::writeFile(file("res/materialpreview/broken.json"), "{ not json");
	ASSERT_EQ(modules.start(Filename(String(dir.path().c_str()))), 1);

	// String 10009 names the camera tag, 1022083; the plug-ins after it still register.
	std::vector<int32_t> expected = REGISTERED;
	expected.erase(std::find(expected.begin(), expected.end(), 1022083));
	EXPECT_EQ(PluginRegistry::get().ids(), expected);
	const Lines lines = printed();
	ASSERT_GE(lines.size(), 4u);
	EXPECT_EQ(lines[3], "Failed loading preview scene: broken.json");
	EXPECT_EQ(lines[4], "");
	EXPECT_EQ(PreviewScenes::get().of(1024337).size(), 1u);
}

TEST_F(InstalledPlugin, MenusGetTheEntriesOnceAndOnlyOnBuildsWithBitZero)
{
	ASSERT_EQ(modules.start(Filename(String(dir.path().c_str()))), 1);
	// A second menu build adds nothing.
	modules.sendMessage(C4DPL_BUILDMENU, nullptr);

	// The new-material command after the host's own, and the renderer's
	// submenu last in the picture viewer.
	const std::string materials = MenuOutline(*GetMenuResource(String("M_MATERIAL_MANAGER")));
	const std::string viewer = MenuOutline(*GetMenuResource(String("M_PICTURE_VIEWER")));
	const std::string new_material = "  command IDM_NEW_MATERIAL\n  command PLUGIN_CMD_1024454\n  command IDM_NEW_SHADER\n";
	const std::string renderer = "submenu\n  title Velorn Renderer\n  command PLUGIN_CMD_1023599\n  command PLUGIN_CMD_1023695\n"
								 "  command PLUGIN_CMD_1023696\n  command PLUGIN_CMD_1027825\n";
	EXPECT_NE(materials.find(new_material), std::string::npos) << materials;
	EXPECT_EQ(materials.find("PLUGIN_CMD_1024454"), materials.rfind("PLUGIN_CMD_1024454")) << materials;
	ASSERT_GT(viewer.size(), renderer.size());
	EXPECT_EQ(viewer.substr(viewer.size() - renderer.size()), renderer);
	EXPECT_EQ(viewer.find("Velorn Renderer"), viewer.rfind("Velorn Renderer")) << viewer;

	ResetStartupServices();
	SetVersionType(0);
	modules.sendMessage(C4DPL_BUILDMENU, nullptr);
	EXPECT_EQ(SearchMenuResource(GetMenuResource(String("M_PICTURE_VIEWER")), String("PLUGIN_CMD_1023599")), nullptr);
}

TEST_F(InstalledPlugin, InitCountNestsAndTheVersionIsChecked)
{
	Velorn::Platform::LibraryHandle library = Velorn::Platform::loadLibrary(file("velorn.cdl"));
	ASSERT_NE(library, nullptr);
	const auto c4d_main = reinterpret_cast<C4DMainFunction>(Velorn::Platform::findSymbol(library, "c4d_main"));
	ASSERT_NE(c4d_main, nullptr);
	const Filename moduleDir(String(pluginDir().c_str()));
	HostFunctionTable old{9700};
	HostFunctionTable table{HOST_API_VERSION};

	EXPECT_EQ(c4d_main(C4DPL_INIT_SYS, &old, nullptr, const_cast<Filename*>(&moduleDir)), C4DPL_ERROR_VERSION);
	EXPECT_EQ(c4d_main(C4DPL_END, nullptr, nullptr, nullptr), 1);
	EXPECT_EQ(c4d_main(C4DPL_INIT_SYS, &table, nullptr, nullptr), C4DPL_ERROR_VERSION);
	EXPECT_EQ(c4d_main(C4DPL_END, nullptr, nullptr, nullptr), 1);

	EXPECT_EQ(c4d_main(C4DPL_INIT_SYS, &table, nullptr, const_cast<Filename*>(&moduleDir)), 1);
	EXPECT_EQ(c4d_main(C4DPL_MESSAGE, reinterpret_cast<void*>(intptr_t(C4DPL_INIT_SYS)), nullptr, nullptr), 1);
	EXPECT_EQ(c4d_main(C4DPL_INIT, nullptr, nullptr, nullptr), 1);
	// A second init only counts; the end that does not bring the count to 0
	// leaves the module running, its resource loaded.
	EXPECT_EQ(c4d_main(C4DPL_INIT_SYS, &table, nullptr, const_cast<Filename*>(&moduleDir)), 1);
	EXPECT_EQ(c4d_main(C4DPL_END, nullptr, nullptr, nullptr), 1);
	EXPECT_EQ(GeLoadString(10009), String("Velorn Camera Tag"));
	EXPECT_EQ(c4d_main(C4DPL_END, nullptr, nullptr, nullptr), 1);
	EXPECT_EQ(GeLoadString(10009), String());

	EXPECT_EQ(c4d_main(C4DPL_INIT_VERSION, nullptr, nullptr, nullptr), 3);
	EXPECT_EQ(c4d_main(C4DPL_MESSAGE, reinterpret_cast<void*>(intptr_t(0)), nullptr, nullptr), 1);
	EXPECT_EQ(c4d_main(C4DPL_MESSAGE, reinterpret_cast<void*>(intptr_t(424242)), nullptr, nullptr), -1);
	EXPECT_EQ(c4d_main(99, nullptr, nullptr, nullptr), -1);
	PluginRegistry::get().clear();
	Velorn::Platform::freeLibrary(library);
}
