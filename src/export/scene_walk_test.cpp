#include "export/export_test_helpers.h"

#include "c4d/layer_object.h"
#include "c4d/light_object.h"
#include "c4d/polygon_object.h"
#include "c4d/primitives.h"
#include "scene/emission_overrides.h"
#include "scene/materials_basic.h"
#include "scene/rotation.h"
#include "scene/scene_node_material.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_section_plane.h"
#include "scene/scene_node_sphere.h"
#include "scene/wavelength_values.h"

#include <algorithm>
#include <map>
#include <string>

using Velorn::Reference;
using Velorn::SceneNode;
using Velorn::SceneNodeModel;
using Velorn::SceneNodeRoot;

namespace
{

// Positions go through the 32-bit scale of the settings.
void expectNear(const Velorn::Vec3d& got, const Velorn::Vec3d& expected)
{
	EXPECT_NEAR(got.x, expected.x, 1e-6);
	EXPECT_NEAR(got.y, expected.y, 1e-6);
	EXPECT_NEAR(got.z, expected.z, 1e-6);
}

Matrix at(double x, double y, double z)
{
	Matrix m;
	m.off = Vector(x, y, z);
	return m;
}

// A square of 100 units in the xz plane, one quad.
PolygonObject* square(const char* name, const Matrix& ml = Matrix())
{
	PolygonObject* op = polygonObject(name, {{0, 0, 0}, {100, 0, 0}, {100, 0, 100}, {0, 0, 100}}, {{0, 1, 2, 3}});
	op->SetMl(ml);
	return op;
}

class WalkTest : public ExportTest
{
protected:
	// Puts op last among the top-level objects, or last under parent.
	template<typename T>
	T* add(T* op, BaseObject* parent = nullptr)
	{
		if(parent)
			op->InsertUnderLast(parent);
		else
		{
			BaseObject* last = doc.doc->GetFirstObject();
			while(last && last->GetNext())
				last = last->GetNext();
			doc.doc->InsertObject(op, nullptr, last);
		}
		return op;
	}

	BaseObject* light(const char* name, int32_t type, const Matrix& ml = Matrix())
	{
		BaseObject* op = add(BaseObject::Alloc(Olight));
		op->SetName(String(name));
		op->SetMl(ml);
		op->GetDataInstance()->SetInt32(LIGHT_TYPE, type);
		return op;
	}

	Reference<SceneNodeRoot> exportScene()
	{
		doc.doc->ExecutePasses(nullptr, true, true, true, 0);
		settings.reset(new ExportSettings(doc.settings()));
		exporter.reset(new SceneExporter(settings.get()));
		return exporter->exportScene();
	}

	template<typename T>
	static std::vector<T*> nodes(const Reference<SceneNodeRoot>& root, unsigned type)
	{
		std::vector<T*> typed;
		for(const auto& node : root->getChildren())
			if(node->getType() == type)
				typed.push_back(dynamic_cast<T*>(node.getPointer()));
		return typed;
	}
	static std::vector<std::string> modelNames(const Reference<SceneNodeRoot>& root)
	{
		std::vector<std::string> names;
		for(SceneNodeModel* model : nodes<SceneNodeModel>(root, Velorn::SceneNodeType::Model))
			names.push_back(model->getName().str());
		return names;
	}
	static SceneNodeModel* model(const Reference<SceneNodeRoot>& root, const std::string& name)
	{
		for(SceneNodeModel* m : nodes<SceneNodeModel>(root, Velorn::SceneNodeType::Model))
			if(m->getName().str() == name)
				return m;
		return nullptr;
	}
	static std::string materialName(const Reference<SceneNodeRoot>& root, Velorn::UID uid)
	{
		for(auto* m : nodes<Velorn::SceneNodeMaterial>(root, Velorn::SceneNodeType::Material))
			if(m->uid == uid)
				return m->getName().str();
		return "";
	}

	TestDocument doc;
	std::unique_ptr<ExportSettings> settings;
	std::unique_ptr<SceneExporter> exporter;
};

} // namespace

TEST_F(WalkTest, RenderModesLayersAndCameraDependenceDecideWhatIsExported)
{
	BaseObject* hidden = add(BaseObject::Alloc(Onull));
	hidden->SetRenderMode(MODE_OFF);
	add(square("Undefined"), hidden);
	add(square("Shown"), hidden)->SetRenderMode(MODE_ON);

	LayerObject* layer = LayerObject::Alloc();
	layer->SetLayerData(LayerData{false, true});
	doc.doc->GetLayerObjectRoot()->InsertLast(layer);
	PolygonObject* onLayer = add(square("OnLayer"));
	onLayer->SetLayerObject(layer);
	add(square("LayerChild"), onLayer);

	add(square("Floorlike"))->SetInfo(OBJECT_CAMERADEPENDENT);

	const Reference<SceneNodeRoot> root = exportScene();
	EXPECT_EQ(modelNames(root), (std::vector<std::string>{"Shown", "LayerChild"}));
}

TEST_F(WalkTest, EqualMeshesAreSharedAndInstancesPlaceTheirTarget)
{
	add(square("A"));
	add(square("B", at(0, 200, 0)));
	add(square("C", at(0, 400, 0)));
	BaseObject* instance = add(BaseObject::Alloc(Oinstance));
	instance->SetName(String("Inst"));
	instance->SetMl(at(500, 0, 0));
	instance->GetDataInstance()->SetLink(1001, doc.doc->GetFirstObject()->GetNext());

	// An instance inside its own target would repeat without end: ignored.
	BaseObject* group = add(BaseObject::Alloc(Onull));
	add(square("Leaf", at(0, 0, 300)), group);
	BaseObject* inner = add(BaseObject::Alloc(ID_VELORN_INSTANCE), group);
	inner->GetDataInstance()->SetLink(10000, group);

	const Reference<SceneNodeRoot> root = exportScene();
	// The camera comes first in the document and the target "A" is the
	// square after it; the instance gives "A" a second model at x = 5 m.
	EXPECT_EQ(modelNames(root), (std::vector<std::string>{"A", "B", "C", "A", "Leaf"}));
	EXPECT_EQ(nodes<SceneNode>(root, Velorn::SceneNodeType::Mesh).size(), 1u);
	EXPECT_EQ(exporter->instance_count, 4);

	const auto models = nodes<SceneNodeModel>(root, Velorn::SceneNodeType::Model);
	for(SceneNodeModel* m : models)
		EXPECT_EQ(m->geometry_uid, models[0]->geometry_uid);
	// Static placement: (x, z, y) in metres.
	expectNear(models[2]->keyframes[0].pos, Velorn::Vec3d(0, 0, 4));
	expectNear(models[3]->keyframes[0].pos, Velorn::Vec3d(5, 0, 0));
	expectNear(models[4]->keyframes[0].pos, Velorn::Vec3d(0, 3, 0));
	EXPECT_EQ(exporter->model_map.size(), 4u);
}

TEST_F(WalkTest, ExitPortalTagReplacesMaterialsOrRemovesTheObject)
{
	PolygonObject* portal = add(square("Window"));
	portal->MakeTag(ID_EXIT_PORTAL_TAG)->GetDataInstance()->SetInt32(ep_enabled, 1);
	PolygonObject* off = add(square("Shut"));
	off->GetPointW()[2] = Vector(100, 0, 50);
	off->MakeTag(ID_EXIT_PORTAL_TAG);

	const Reference<SceneNodeRoot> root = exportScene();
	EXPECT_EQ(modelNames(root), std::vector<std::string>{"Window"});
	const SceneNodeModel* window = model(root, "Window");
	ASSERT_EQ(window->material_uids.size(), 1u);
	EXPECT_EQ(materialName(root, window->material_uids[0]), "Exit Portal");
	// The switched-off portal's mesh was made all the same.
	EXPECT_EQ(nodes<SceneNode>(root, Velorn::SceneNodeType::Mesh).size(), 2u);
}

TEST_F(WalkTest, SpheresStayAnalyticOnlyWithUniformScaleOffTheGpu)
{
	BaseObject* ball = add(BaseObject::Alloc(Osphere));
	ball->SetName(String("Ball"));
	Matrix scaled = at(0, 100, 0);
	scaled.v1 = Vector(2, 0, 0);
	scaled.v2 = Vector(0, 2, 0);
	scaled.v3 = Vector(0, 0, 2);
	ball->SetMl(scaled);
	BaseObject* egg = add(BaseObject::Alloc(Osphere));
	egg->SetName(String("Egg"));
	Matrix stretched;
	stretched.v2 = Vector(0, 1.5, 0);
	egg->SetMl(stretched);

	Reference<SceneNodeRoot> root = exportScene();
	const auto spheres = nodes<Velorn::SceneNodeSphere>(root, Velorn::SceneNodeType::Sphere);
	ASSERT_EQ(spheres.size(), 1u);
	// Radius 100 units of 1 cm, scaled by 2.
	EXPECT_NEAR(spheres[0]->radius, 2.0, 1e-6);
	expectNear(spheres[0]->keyframes[0].pos, Velorn::Vec3d(0, 0, 1));
	EXPECT_EQ(spheres[0]->keyframes[0].rotation_axis, Velorn::Vec3d(0, 1, 0));
	EXPECT_EQ(spheres[0]->material_uid, settings->default_material);
	EXPECT_EQ(modelNames(root).size(), 1u);

	// A GPU render wants triangles: both become meshes.
	doc.videoPost().SetInt32(vp_gpu, 1);
	root = exportScene();
	EXPECT_TRUE(nodes<Velorn::SceneNodeSphere>(root, Velorn::SceneNodeType::Sphere).empty());
	EXPECT_EQ(modelNames(root).size(), 2u);
}

TEST_F(WalkTest, LightsBecomeEmittingGeometry)
{
	light("Bulb", LIGHT_TYPE_OMNI, at(0, 300, 0));
	light("Spot", LIGHT_TYPE_SPOT);
	const char* shapes[] = {"Disc", "Rectangle", "Sphere", "Cylinder", "Cube", "Hemisphere"};
	for(int32_t shape = 0; shape < 6; ++shape)
		light(shapes[shape], LIGHT_TYPE_AREA)->GetDataInstance()->SetInt32(LIGHT_AREADEFINITION_SHAPE, shape);
	light("Unknown shape", LIGHT_TYPE_AREA)->GetDataInstance()->SetInt32(LIGHT_AREADEFINITION_SHAPE, 9);
	BaseObject* off = light("Switched off", LIGHT_TYPE_OMNI);
	off->SetDeformMode(false);
	PolygonObject* panel = add(square("Panel", at(0, 0, 500)));
	BaseObject* byObject = light("By object", LIGHT_TYPE_AREA);
	byObject->GetDataInstance()->SetInt32(LIGHT_AREADEFINITION_SHAPE, LIGHT_AREADEFINITION_SHAPE_OBJECT);
	byObject->GetDataInstance()->SetLink(LIGHT_AREADEFINITION_OBJECT, panel);

	const Reference<SceneNodeRoot> root = exportScene();
	// The panel gives the light its shape and is no mesh of its own.
	EXPECT_EQ(modelNames(root), (std::vector<std::string>{"Spot", "Disc", "Rectangle", "Sphere", "Cylinder", "Cube",
									"Hemisphere", "Panel"}));
	const SceneNodeModel* shaped = model(root, "Panel");
	expectNear(shaped->keyframes[0].pos, Velorn::Vec3d(0, 5, 0));
	EXPECT_EQ(materialName(root, shaped->material_uids[0]), "defaultLight");

	// The omni light is a sphere of 1 cm.
	const auto spheres = nodes<Velorn::SceneNodeSphere>(root, Velorn::SceneNodeType::Sphere);
	ASSERT_EQ(spheres.size(), 1u);
	EXPECT_NEAR(spheres[0]->radius, 0.01, 1e-9);
	expectNear(spheres[0]->keyframes[0].pos, Velorn::Vec3d(0, 0, 3));
	EXPECT_EQ(materialName(root, spheres[0]->material_uid), "defaultLight");

	// Without a light tag a spot light gets the plug-in's default profile,
	// and the emission is the host light's colour times its brightness.
	const SceneNodeModel* spot = model(root, "Spot");
	ASSERT_EQ(spot->ies_profiles.size(), 1u);
	EXPECT_EQ(Filename(String(spot->ies_profiles[0]->path.str())).GetFile().GetString(), String("default.ies"));
	EXPECT_TRUE(model(root, "Disc")->ies_profiles.empty());
	const auto materials = nodes<Velorn::SceneNodeMaterial>(root, Velorn::SceneNodeType::Material);
	// One per light that exports: omni, spot, six shapes, the object shape.
	EXPECT_EQ(std::count_if(materials.begin(), materials.end(),
				  [](const Velorn::SceneNodeMaterial* m) { return m->getName().str() == "defaultLight"; }),
		9);
}

TEST_F(WalkTest, LightTagGivesSpectrumLayerScaleAndProfile)
{
	BaseObject* lamp = light("Lamp", LIGHT_TYPE_AREA);
	BaseContainer& tag = *lamp->MakeTag(ID_LIGHT_TAG)->GetDataInstance();
	tag.SetInt32(lt_type, lt_type_black_body);
	tag.SetFloat(lt_black_body_temperature, 3200);
	tag.SetFloat(lt_black_body_gain, 4);
	tag.SetInt32(lt_layer, 3);
	tag.SetInt32(lt_emission_scale, 1);
	tag.SetInt32(lt_emission_measure, lt_measure_luminous_intensity);
	tag.SetFloat(lt_emission_value, 800);
	tag.SetInt32(lt_ies, 1);
	tag.SetFilename(lt_ies_file, Filename("/profiles/narrow.ies"));

	const Reference<SceneNodeRoot> root = exportScene();
	const SceneNodeModel* model = WalkTest::model(root, "Lamp");
	ASSERT_NE(model, nullptr);
	ASSERT_EQ(model->emission_scales.size(), 1u);
	EXPECT_EQ(model->emission_scales[0]->measure, Velorn::EmissionScale::LuminousIntensity);
	EXPECT_EQ(model->emission_scales[0]->value, 800);
	EXPECT_EQ(model->emission_scales[0]->material_uid, settings->light_material);
	ASSERT_EQ(model->ies_profiles.size(), 1u);
	EXPECT_EQ(model->ies_profiles[0]->path.str(), "/profiles/narrow.ies");

	const auto& diffuse = nodeOf<const Velorn::DiffuseMaterial>(
		nodeOf<const Velorn::SceneNodeMaterial>(root->findChild(settings->light_material)).material.getPointer());
	// Host layer 3 is the first layer met: renderer layer 0.
	EXPECT_EQ(diffuse.layer, 0u);
	EXPECT_EQ(settings->layers, (std::map<int32_t, int32_t>{{3, 0}}));
	const auto& spectrum = nodeOf<const Velorn::BlackBodySpectrum>(
		nodeOf<const Velorn::ConstantWavelengthDependentParam>(diffuse.emission.getPointer()).spectrum.getPointer());
	EXPECT_EQ((std::vector<double>{spectrum.temperature, spectrum.gain}), (std::vector<double>{3200, 4}));
}

// A parent moving 1 m per frame along x, with a motion blur tag of the
// given strength, and a square as its child.
class MotionBlurWalkTest : public WalkTest
{
protected:
	PolygonObject* movingChild(double strength)
	{
		BaseObject* rig = add(BaseObject::Alloc(Onull));
		rig->GetTracks().position.AppendKey(BaseTime(0, 1), Vector(0, 0, 0));
		rig->GetTracks().position.AppendKey(BaseTime(1, 1), Vector(3000, 0, 0));
		rig->MakeTag(Tmotionblur)->GetDataInstance()->SetFloat(1000, strength);
		return add(square("Moving", at(0, 100, 0)), rig);
	}
	// The exposure is 1 / divisor seconds at the document's 30 frames.
	void exposure(double divisor) { doc.tag().SetFloat(ct_exposure_divisor, divisor); }

	// The time or the x of each keyframe.
	static std::vector<double> keys(const SceneNodeModel& model, bool time)
	{
		std::vector<double> values;
		for(const auto& key : model.keyframes)
			values.push_back(time ? key.time : key.pos.x);
		return values;
	}
};

TEST_F(MotionBlurWalkTest, ParentTagSpreadsKeyframesOverTheExposure)
{
	movingChild(1.0);
	// 0.1 s at 30 fps: 3 frames, so steps at frames 1 and 2 and the end at 3.
	exposure(10);
	const Reference<SceneNodeRoot> root = exportScene();
	const SceneNodeModel* moving = model(root, "Moving");
	ASSERT_NE(moving, nullptr);
	EXPECT_EQ(keys(*moving, true), (std::vector<double>{0, 1.0 / 3, 2.0 / 3, 1.0}));
	const std::vector<double> x = keys(*moving, false);
	ASSERT_EQ(x.size(), 4u);
	for(size_t i = 0; i < x.size(); ++i)
		EXPECT_NEAR(x[i], double(i), 1e-6);
	EXPECT_NEAR(moving->keyframes[1].pos.z, 1.0, 1e-6);
	// The rotation keeps only the scale; the document is back at frame 0.
	EXPECT_EQ(moving->rotation->getMatrix().e[0], 1.0);
	EXPECT_EQ(doc.doc->GetFirstObject()->GetNext()->GetMl().off, Vector(0, 0, 0));
	EXPECT_EQ(doc.doc->GetTime(), BaseTime(0, 30));
	// The camera export reports the film width first.
	EXPECT_EQ(consoleLines(), (std::vector<String>{"36", "SceneExportObjectMotionBlurSG()"}));
}

TEST_F(MotionBlurWalkTest, StrengthZeroAndShortExposureGiveTwoKeyframes)
{
	movingChild(0.0);
	exposure(10);
	Reference<SceneNodeRoot> root = exportScene();
	// No steps: both keyframes at the frame itself.
	EXPECT_EQ(keys(*model(root, "Moving"), true), (std::vector<double>{0, 1}));
	EXPECT_EQ(keys(*model(root, "Moving"), false), (std::vector<double>{0, 0}));

	// 1/100 s is 0.3 frames: below half a frame no step is made, and the
	// last keyframe lies at the end of the exposure, 0.3 m on.
	doc.doc->GetFirstObject()->GetNext()->GetTag(Tmotionblur)->GetDataInstance()->SetFloat(1000, 1.0);
	exposure(100);
	root = exportScene();
	const std::vector<double> x = keys(*model(root, "Moving"), false);
	ASSERT_EQ(x.size(), 2u);
	EXPECT_EQ(x[0], 0);
	EXPECT_NEAR(x[1], 0.3, 1e-6);

	// Without the tag: one static keyframe.
	BaseTag* tag = doc.doc->GetFirstObject()->GetNext()->GetTag(Tmotionblur);
	BaseTag::Free(tag);
	root = exportScene();
	EXPECT_EQ(model(root, "Moving")->keyframes.size(), 1u);
}

TEST_F(WalkTest, BadInputIsSkippedAndTheExportFinishes)
{
	// A light tag on a polygon object: the object exports, the tag is named.
	add(square("Tagged"))->MakeTag(ID_LIGHT_TAG);
	// An instance of nothing and an area light whose shape object is missing.
	add(BaseObject::Alloc(Oinstance))->SetName(String("Empty instance"));
	BaseObject* shapeless = light("Shapeless", LIGHT_TYPE_AREA);
	shapeless->GetDataInstance()->SetInt32(LIGHT_AREADEFINITION_SHAPE, LIGHT_AREADEFINITION_SHAPE_OBJECT);
	// A polygon object without polygons.
	add(PolygonObject::Alloc(3, 0))->SetName(String("Empty"));

	const Reference<SceneNodeRoot> root = exportScene();
	EXPECT_EQ(modelNames(root), std::vector<std::string>{"Tagged"});
	EXPECT_EQ(consoleLines(), (std::vector<String>{"36", "Skipped the light tag of 'Tagged': the object is no light."}));
}
