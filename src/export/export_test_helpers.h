#pragma once

#include "c4d/base_draw.h"
#include "c4d/console.h"
#include "c4d/document_file.h"
#include "c4d/host_clock.h"
#include "c4d/plugin_test_helpers.h"
#include "c4d/polygon_object.h"
#include "c4d/resources.h"
#include "c4d/world_preferences.h"
#include "export/export_settings.h"
#include "host/plugin_ids.h"
#include "export/scene_exporter.h"
#include "host/camera_tag.h"
#include "host/light_tag.h"
#include "host/object_tags.h"
#include "host/plugin_globals.h"

#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

// The plug-in's tags, whose new tags get their Init values, and the video
// post, section plane and instance object as plain plug-ins whose
// parameters each test sets. Once per test binary.
inline void registerExportPlugins()
{
	static const bool done = [] {
		StringTable strings;
		strings.set(10002, String("Velorn Light"));
		strings.set(10006, String("Velorn Exit Portal"));
		strings.set(10009, String("Velorn Camera"));
		strings.set(10016, String("Velorn Subdivision"));
		strings.set(10028, String("Velorn Compositing"));
		HostResources::get().setStrings(strings);
		RegisterLightTag();
		RegisterExitPortalTag();
		RegisterCameraTag();
		RegisterSubdivisionTag();
		RegisterCompositingTag();
		registerPlainPlugins(PluginKind::VideoPost, {ID_VIDEO_POST});
		registerPlainPlugins(PluginKind::Object, {ID_SECTION_PLANE, ID_VELORN_INSTANCE});
		return true;
	}();
	(void)done;
}

// A polygon object of the points and polygons, named, in no document.
inline PolygonObject* polygonObject(const char* name, const std::vector<Vector>& points, const std::vector<CPolygon>& polygons)
{
	PolygonObject* op = PolygonObject::Alloc((int32_t)points.size(), (int32_t)polygons.size());
	op->SetName(String(name));
	std::copy(points.begin(), points.end(), op->GetPointW());
	std::copy(polygons.begin(), polygons.end(), op->GetPolygonW());
	return op;
}

// A host whose clock and date stand still, with an empty console, the
// centimetre preference and no GPUs, restored after each test.
class ExportTest : public testing::Test
{
protected:
	void SetUp() override
	{
		registerExportPlugins();
		HostClock::get().fixTime(1000);
		HostClock::get().fixDate(DateTime{2024, 3, 5, 14, 7, 9});
		HostConsole::get().clear();
		ResetWorldPreferences();
		gpu_devices.clear();
	}
	void TearDown() override
	{
		HostClock::get().release();
		HostConsole::get().clear();
		ResetWorldPreferences();
		gpu_devices.clear();
	}

	static std::vector<String> consoleLines() { return HostConsole::get().texts(HostConsole::Kind::Print); }
};

// A document with one active camera, built in code: perspective, 36 mm
// film, a field of view of 2 atan(0.5), 1000 units to the target, at the
// origin. The camera tag (with its Init values) and the video post are made
// when first asked for.
class TestDocument
{
public:
	TestDocument() : doc(BaseDocument::Alloc()), camera(BaseObject::Alloc(Ocamera))
	{
		doc->InsertObject(camera, nullptr, nullptr);
		doc->SetActiveCamera(camera);
		BaseContainer& c = cameraData();
		c.SetInt32(CAMERA_PROJECTION, CAMERA_PROJECTION_PERSPECTIVE);
		c.SetFloat(CAMERA_SENSOR_WIDTH, 36.0);
		c.SetFloat(CAMERA_FOV, 2.0 * std::atan(0.5));
		c.SetFloat(CAMERA_TARGET_DISTANCE, 1000.0);
	}
	~TestDocument() { BaseDocument::Free(doc); }
	TestDocument(const TestDocument&) = delete;
	TestDocument& operator=(const TestDocument&) = delete;

	BaseContainer& cameraData() { return *camera->GetDataInstance(); }
	BaseContainer& tag()
	{
		BaseTag* t = camera->GetTag(ID_CAMERA_TAG);
		return *(t ? t : camera->MakeTag(ID_CAMERA_TAG))->GetDataInstance();
	}
	BaseContainer& videoPost()
	{
		RenderData* rd = doc->GetActiveRenderData();
		if(!rd->GetFirstVideoPost())
			rd->InsertVideoPostLast(BaseVideoPost::Alloc(ID_VIDEO_POST));
		return *rd->GetFirstVideoPost()->GetDataInstance();
	}

	// Settings whose textures go to the temporary directory, so that no
	// directory is made.
	ExportSettings settings(int32_t width = 640, int32_t height = 480, int32_t verbose = 0)
	{
		return ExportSettings(doc, Filename("/scenes/test.vls"), &temp_files, 0, width, height, 0, 0, verbose, 0);
	}
	// The scene of a whole export of the document.
	Velorn::Reference<Velorn::SceneNodeRoot> exportScene(int32_t width = 640, int32_t height = 480)
	{
		ExportSettings s = settings(width, height);
		SceneExporter exporter(&s);
		return exporter.exportScene();
	}

	BaseDocument* doc;
	BaseObject* camera;
	std::vector<Filename> temp_files;
};

// A node of a scene (or a value of one) as its class; the test fails when
// it is missing or of another class.
template <class T, class U>
T& nodeOf(U* node)
{
	T* typed = dynamic_cast<T*>(node);
	if(!typed)
		throw std::runtime_error("the scene lacks the node");
	return *typed;
}
template <class T>
T& nodeOf(const Velorn::Reference<Velorn::SceneNode>& node)
{
	return nodeOf<T>(node.getPointer());
}
