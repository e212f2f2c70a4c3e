// Model nodes: binding, walks, references, copies, equality and bounds.
#include "scene/geometry_test_helpers.h"
#include "scene/material_test_helpers.h"
#include "scene/materials_basic.h"
#include "scene/rotation.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_parametric_surface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

using namespace Velorn;
using VelornTest::classAndFailureOf;
using VelornTest::expectBounds;
using VelornTest::plainNode;
using VelornTest::valuesOf;
using VelornTest::visitNode;

namespace
{

Reference<EmissionScale> scaleFor(const char* material_name, UID material_uid = UID())
{
	Reference<EmissionScale> scale(new EmissionScale());
	scale->material_name = material_name;
	scale->material_uid = material_uid;
	return scale;
}

Reference<IESProfile> profileFor(const char* material_name, UID material_uid = UID(), const char* path = "")
{
	Reference<IESProfile> profile(new IESProfile());
	profile->material_name = material_name;
	profile->material_uid = material_uid;
	profile->path = path;
	return profile;
}

// The model "Lamp" (20) that names the mesh node and the three materials
// by UID.
struct LampScene : VelornTest::GeometryScene
{
	LampScene()
	{
		model->uid = UID(20);
		model->setName("Lamp");
		model->rotation = new MatrixRotation();
		model->setGeometryUID(UID(7));
		model->setMaterialUIDs({UID(3), UID(4), UID(5)});
		root->addChildNode(model);
	}

	void bind() { visitNode(*model, VisitOperation::Bind); }

	Reference<SceneNodeModel> model = new SceneNodeModel();
};

const char* const lamp = "While processing node 'Lamp', UID 20:  ";

std::string velorn(const std::string& message) { return "VelornException: " + message; }
std::string parser(const std::string& message) { return "SceneParserExcep: " + message; }

} // namespace

TEST(ModelBinding, EveryFailureHasItsMessage)
{
	struct Case
	{
		const char* what;
		std::function<void(LampScene&)> change;
		std::string message;
	};
	const std::string too_few = velorn("Model (UID 20, name 'Lamp') has a different number of materials assigned than the geometry "
									   "references.\nnum materials assigned: 2, geometry num materials referenced: 3.  SDK Users: "
									   "make sure you call endOfModel() on VelornMesh objects");
	const Case cases[] = {
		{"detached model",
			[](LampScene& s) {
				s.model = new SceneNodeModel();
				s.model->setGeometryUID(UID(7));
			},
			velorn("While binding geometry: root node was NULL")},
		{"missing geometry", [](LampScene& s) { s.model->setGeometryUID(UID(40)); },
			velorn(std::string(lamp) + "Failed to find geometry for UID 40")},
		{"geometry is a material", [](LampScene& s) { s.model->setGeometryUID(UID(3)); },
			velorn("Referenced node did not have type SceneNodeMesh or SceneNodeParametricSurface")},
		{"emission scale names a material the mesh lacks", [](LampScene& s) { s.model->setEmissionScales({scaleFor("Chrome")}); },
			parser("Material 'Chrome' is not defined on mesh Mesh3.")},
		{"names compare all bytes", [](LampScene& s) { s.model->setIESProfiles({profileFor("glass")}); },
			parser("Material 'glass' is not defined on mesh Mesh3.")},
		{"a mesh not loaded defines no names",
			[](LampScene& s) {
				s.mesh->mesh = nullptr;
				s.model->setEmissionScales({scaleFor("Glass")});
			},
			parser("Material 'Glass' is not defined on mesh Mesh3.")},
		{"name rule with both lists",
			[](LampScene& s) {
				s.model->setMaterials(s.materials({3, 4, 5}));
				s.model->setEmissionScales({scaleFor("Metal")});
			},
			parser("No materials assigned to model Lamp.")},
		// The node's own words: the index found has no UID to take.
		{"name beyond the list of UIDs",
			[](LampScene& s) {
				s.model->setMaterialUIDs({UID(3)});
				s.model->setIESProfiles({profileFor("Paint")});
			},
			parser("Model Lamp has no material for 'Paint' (material index 2).")},
		{"emission scale on a surface",
			[](LampScene& s) {
				s.model->setGeometryUID(UID(8));
				s.model->setEmissionScales({scaleFor("Glass")});
			},
			parser("Failed binding material to Emission scale in model Lamp: Invalid UID.")},
		{"IES profile on a surface",
			[](LampScene& s) {
				s.model->setGeometryUID(UID(8));
				s.model->setIESProfiles({profileFor("Glass")});
			},
			parser("Failed binding material to IES profile in model Lamp: Invalid UID.")},
		{"emission scales bind before IES profiles",
			[](LampScene& s) {
				s.model->setIESProfiles({profileFor("", UID(41))});
				s.model->setEmissionScales({scaleFor("", UID(40))});
			},
			velorn(std::string(lamp) + "Failed to find material for UID 40")},
		{"overrides bind before the material list",
			[](LampScene& s) {
				s.model->setMaterialUIDs({UID(3), UID(42), UID(5)});
				s.model->setIESProfiles({profileFor("", UID(41))});
			},
			velorn(std::string(lamp) + "Failed to find material for UID 41")},
		{"material UID missing", [](LampScene& s) { s.model->setMaterialUIDs({UID(3), UID(40), UID(5)}); },
			velorn(std::string(lamp) + "Failed to find material for UID 40")},
		{"material UID of a medium", [](LampScene& s) { s.model->setMaterialUIDs({UID(3), UID(6), UID(5)}); },
			velorn(std::string(lamp) + "Referenced node (UID 6) did not have type SceneNodeMaterial")},
		{"two bound materials on a mesh that refers to three",
			[](LampScene& s) { s.model->setMaterials(s.materials({3, 4})); }, too_few},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.what);
		LampScene scene;
		c.change(scene);
		EXPECT_EQ(classAndFailureOf([&] { scene.bind(); }), c.message);
	}
}

TEST(ModelBinding, ResolvesGeometryMaterialsAndOverrides)
{
	{
		SCOPED_TRACE("more materials than the mesh refers to");
		LampScene scene;
		scene.model->setMaterialUIDs({UID(5), UID(4), UID(3), UID(5)});
		scene.bind();
		EXPECT_EQ(scene.model->materials, scene.materials({5, 4, 3, 5}));
	}
	{
		SCOPED_TRACE("names found through the material UIDs");
		LampScene scene;
		scene.model->setMaterialUIDs({UID(5), UID(3), UID(4)});
		Reference<EmissionScale> by_name = scaleFor("Metal");
		Reference<EmissionScale> by_uid = scaleFor("Chrome", UID(4));
		Reference<EmissionScale> given = scaleFor("Chrome");
		given->material = scene.material(5);
		Reference<IESProfile> profile = profileFor("Paint");
		scene.model->setEmissionScales({by_name, by_uid, given});
		scene.model->setIESProfiles({profile});
		scene.bind();
		// Metal is the mesh's index 1, which the model gives UID 3.
		EXPECT_EQ(by_name->material_uid, UID(3));
		EXPECT_EQ(by_uid->material.getPointer(), scene.material(4));
		EXPECT_EQ(given->material.getPointer(), scene.material(5));
		EXPECT_FALSE(given->material_uid.valid());
		EXPECT_EQ(profile->material.getPointer(), scene.material(4));
	}
	{
		SCOPED_TRACE("names found through bound materials");
		LampScene scene;
		scene.model->setMaterialUIDs({});
		scene.model->setMaterials(scene.materials({5, 4, 3}));
		Reference<IESProfile> profile = profileFor("Glass");
		scene.model->setIESProfiles({profile});
		scene.bind();
		EXPECT_EQ(profile->material.getPointer(), scene.material(5));
	}
	{
		SCOPED_TRACE("a bound list leaves the UIDs unread and a set geometry stays");
		LampScene scene;
		Reference<SceneNodeMesh> elsewhere(new SceneNodeMesh());
		scene.model->geometry = elsewhere;
		scene.model->setMaterials(scene.materials({3, 4, 5}));
		scene.model->setMaterialUIDs({UID(40)});
		scene.bind();
		EXPECT_EQ(scene.model->geometry, elsewhere);
		EXPECT_EQ(scene.model->materials, scene.materials({3, 4, 5}));
	}
	{
		SCOPED_TRACE("a surface has no material count to meet");
		LampScene scene;
		scene.model->setGeometryUID(UID(8));
		scene.model->setMaterialUIDs({});
		scene.model->setEmissionScales({scaleFor("Glass", UID(4))});
		scene.bind();
		EXPECT_EQ(scene.model->geometry, scene.surface);
		EXPECT_EQ(scene.model->emission_scales[0]->material.getPointer(), scene.material(4));
	}
}

// Its expected paths are written with the POSIX separator.
#ifndef _WIN32
TEST(ModelWalks, AMeshSharedByThreeModelsIsADependencyOnceWithPosixSeparators)
{
	Reference<SceneNodeMesh> mesh(new SceneNodeMesh());
	mesh->uid = UID(7);
	mesh->path = "meshes/rock.vlmesh";
	mesh->setMesh(VelornTest::sampleMesh());
	Reference<SceneNodeMaterial> wood_node = VelornTest::texturedNode("Wood", 3, "wood.png");

	Vector<Reference<SceneNodeModel>> models;
	for(const char* ies : {"a.ies", "b.ies", "c.ies"})
	{
		Reference<SceneNodeModel> model(new SceneNodeModel());
		model->setGeometry(mesh);
		model->setMaterials({wood_node, nullptr});
		model->setIESProfiles({profileFor("Wood", UID(), ies)});
		models.push_back(model);
	}

	struct Case
	{
		bool use_stored_paths;
		std::string mesh_path;
	};
	const Case cases[] = {
		{true, "meshes/rock.vlmesh"},
		{false, "/scenes/city_meshes/" + VelornTest::sampleMeshFileName()},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.use_stored_paths);
		VisitOperation op(VisitOperation::GetDependencies, "/scenes/city.vls", "/scenes");
		op.use_stored_paths = c.use_stored_paths;
		for(const Reference<SceneNodeModel>& model : models)
			model->doVisit(op);
		// The geometry once per walk, then each model's IES profile and its
		// materials, which are not deduplicated.
		EXPECT_EQ(op.dependency_paths,
			Vector<String>({c.mesh_path.c_str(), "a.ies", "wood.png", "b.ies", "wood.png", "c.ies", "wood.png"}));
	}
}
#endif

TEST(ModelWalks, UpdatePathsReplacesOnlyTheIESPaths)
{
	LampScene scene;
	scene.mesh->path = "meshes/rock.vlmesh";
	Reference<IESProfile> a = profileFor("Glass", UID(), "a.ies");
	Reference<IESProfile> b = profileFor("Metal", UID(), "b.ies");
	scene.model->setIESProfiles({a, b});
	scene.bind();

	VisitOperation update(VisitOperation::UpdatePaths, "", "");
	update.path_map.insert("a.ies", "copy/a.ies");
	update.path_map.insert("b.ies", "copy/b.ies");
	scene.model->doVisit(update);
	EXPECT_EQ(a->path, String("copy/a.ies"));
	EXPECT_EQ(b->path, String("copy/b.ies"));
	// The mesh has no mapping and was not asked for one; asked itself, it
	// takes its own.
	EXPECT_EQ(scene.mesh->path, String("meshes/rock.vlmesh"));
	update.path_map.insert("meshes/rock.vlmesh", "copy/rock.vlmesh");
	scene.mesh->doVisit(update);
	EXPECT_EQ(scene.mesh->path, String("copy/rock.vlmesh"));
}

TEST(ModelWalks, OffsetUIDsShiftsOwnGeometryAndMaterialUIDs)
{
	SceneNodeModel model;
	model.setGeometryUID(UID(7));
	model.setMaterialUIDs({UID(3), UID(), UID(5)});
	visitNode(model, VisitOperation::OffsetUIDs, 100);
	EXPECT_EQ(model.geometry_uid, UID(107));
	EXPECT_EQ(valuesOf(model.material_uids), (std::vector<uint32_t>{103, 0xFFFFFFFFu, 105}));
}

TEST(ModelReferences, DependencyUIDsAndUpdatedReferences)
{
	LampScene scene;
	EXPECT_EQ(valuesOf(scene.model->getDependencyUIDs()), (std::vector<uint32_t>{7}));
	scene.model->setMaterials({scene.material(4), nullptr, scene.material(3)});
	scene.model->setGeometry(scene.surface);
	EXPECT_EQ(scene.model->geometry_uid, UID(8));
	scene.model->setGeometryUID(UID(12));
	// The bound geometry wins over the stored UID; null materials are left out.
	EXPECT_EQ(valuesOf(scene.model->getDependencyUIDs()), (std::vector<uint32_t>{8, 4, 3}));
	scene.model->geometry = nullptr;
	EXPECT_EQ(valuesOf(scene.model->getDependencyUIDs()), (std::vector<uint32_t>{12, 4, 3}));

	Reference<SceneNodeMaterial> new_metal = plainNode("New metal", 4);
	Reference<SceneNodeParametricSurface> new_surface(new SceneNodeParametricSurface());
	new_surface->uid = UID(8);
	scene.model->setGeometry(scene.surface);
	SceneNodeMap map;
	map.insert(UID(4), new_metal);
	map.insert(UID(3), VelornTest::mediumNode("Not a material", 3));
	map.insert(UID(8), new_surface);
	scene.model->updateReferences(map);
	EXPECT_EQ(scene.model->materials[0], new_metal);
	EXPECT_TRUE(scene.model->materials[1].isNull());
	EXPECT_EQ(scene.model->materials[2].getPointer(), scene.material(3));
	EXPECT_EQ(scene.model->geometry, scene.surface);
}

TEST(ModelClone, CopiesPathRotationAndOverridesButSharesNodes)
{
	LampScene scene;
	scene.model->keyframes.push_back(KeyFrame{Vec3d(1, 2, 3), 0, Vec3d(0, 0, 1), 0.5});
	scene.model->rotation = new AxisRotation(Vec3d(0, 1, 0), 0.25);
	scene.model->scale = 3;
	scene.model->invisible_to_camera = true;
	scene.model->setChangeStamp(9);
	Reference<EmissionScale> scale = scaleFor("Glass", UID(4));
	scale->value = 50;
	scale->material = scene.material(4);
	Reference<IESProfile> profile = profileFor("Metal", UID(5), "spot.ies");
	scene.model->setEmissionScales({scale});
	scene.model->setIESProfiles({profile});
	scene.bind();
	const std::string written = scene.model->toXMLString().str();

	Reference<SceneNodeModel> copy = scene.model->clone().downcast<SceneNodeModel>();
	ASSERT_TRUE(copy.nonNull());
	EXPECT_EQ(copy->toXMLString().str(), written);
	EXPECT_EQ(copy->getChangeStamp(), 9u);
	EXPECT_EQ(copy->geometry, scene.mesh);
	EXPECT_EQ(copy->materials, scene.model->materials);
	EXPECT_NE(copy->rotation, scene.model->rotation);
	ASSERT_EQ(copy->emission_scales.size(), 1u);
	ASSERT_EQ(copy->ies_profiles.size(), 1u);
	EXPECT_NE(copy->emission_scales[0], scale);
	EXPECT_NE(copy->ies_profiles[0], profile);
	EXPECT_EQ(copy->emission_scales[0]->material, scale->material);
	EXPECT_EQ(copy->ies_profiles[0]->material, profile->material);
	EXPECT_EQ(copy->ies_profiles[0]->material_uid, UID(5));
}

TEST(ModelEquality, ComparesGeometryScalePathAndMaterials)
{
	const std::vector<VelornTest::EqualityCase<SceneNodeModel>> cases = {
		{"name", [](SceneNodeModel& m) { m.setName("Other"); }, false},
		{"uid", [](SceneNodeModel& m) { m.uid = UID(21); }, false},
		{"scale", [](SceneNodeModel& m) { m.scale = 2; }, false},
		{"keyframe", [](SceneNodeModel& m) { m.keyframes[0].time = 1; }, false},
		{"another keyframe", [](SceneNodeModel& m) { m.keyframes.push_back(KeyFrame()); }, false},
		{"material count", [](SceneNodeModel& m) { m.materials.push_back(plainNode("Glass", 3)); }, false},
		{"material name", [](SceneNodeModel& m) { m.materials[0] = plainNode("Brass", 3); }, false},
		{"no geometry", [](SceneNodeModel& m) { m.geometry = nullptr; }, false},
		{"geometry of another UID",
			[](SceneNodeModel& m) {
				Reference<SceneNodeMesh> other(new SceneNodeMesh());
				other->setName("Mesh3");
				m.geometry = other;
			},
			false},
		{"material of the same name and UID", [](SceneNodeModel& m) { m.materials[0] = plainNode("Glass", 3); }, true},
		{"invisible_to_camera", [](SceneNodeModel& m) { m.invisible_to_camera = true; }, true},
		{"rotation", [](SceneNodeModel& m) { m.rotation = new AxisRotation(Vec3d(1, 0, 0), 1); }, true},
		{"overrides", [](SceneNodeModel& m) { m.setIESProfiles({profileFor("Glass")}); }, true},
		{"material UIDs", [](SceneNodeModel& m) { m.setMaterialUIDs({UID(9)}); }, true},
	};
	const auto make = [](const LampScene& scene) {
		Reference<SceneNodeModel> m(new SceneNodeModel());
		m->uid = UID(20);
		m->setName("Lamp");
		m->rotation = new MatrixRotation();
		m->setGeometry(scene.mesh);
		m->setMaterials(scene.materials({3, 4, 5}));
		m->keyframes.push_back(KeyFrame{Vec3d(1, 2, 3), 0, Vec3d(0, 0, 1), 0});
		return m;
	};
	LampScene scene;
	VelornTest::expectEqualityCases([&] { return make(scene); }, cases);

	// A mesh node of the same name and UID is no model.
	Reference<SceneNodeModel> model = make(scene);
	SceneNodeMesh other_kind;
	other_kind.uid = model->uid;
	other_kind.setName(model->getName());
	EXPECT_FALSE(model->doIsEqual(other_kind));
}

TEST(ModelBounds, TheMeshBoxGoesThroughScaleRotationAndKeyframes)
{
	// The box from (0, 0, 0) to (1, 1, 1), by its eight corners.
	Reference<Mesh> box(new Mesh());
	for(int corner = 0; corner < 8; ++corner)
		box->addVertex(Vec3f{(float)(corner & 1), (float)((corner >> 1) & 1), (float)((corner >> 2) & 1)});
	box->endOfModel();
	Reference<SceneNodeMesh> mesh(new SceneNodeMesh());
	mesh->setMesh(box);

	SceneNodeModel model;
	model.setGeometry(mesh);
	model.scale = 2;
	// A quarter turn about z takes (x, y, z) to (-y, x, z): scaled by 2 the
	// box spans x -2..0, y 0..2, z 0..2.
	const double quarter = 2 * std::atan(1.0);
	model.rotation = new AxisRotation(Vec3d(0, 0, 1), quarter);
	struct Case
	{
		const char* what;
		Vector<KeyFrame> keyframes;
		float min[3], max[3];
	};
	const Case cases[] = {
		{"no keyframes", {}, {-2, 0, 0}, {0, 2, 2}},
		{"moved to (10, 20, 30)", {KeyFrame{Vec3d(10, 20, 30), 0, Vec3d(0, 0, 1), 0}}, {8, 20, 30}, {10, 22, 32}},
		// The second keyframe turns a quarter about x, (x, y, z) to
		// (x, -z, y): x -2..0, y -2..0, z 0..2 at the origin.
		{"moved, then turned about x",
			{KeyFrame{Vec3d(10, 20, 30), 0, Vec3d(0, 0, 1), 0}, KeyFrame{Vec3d(0, 0, 0), 1, Vec3d(1, 0, 0), quarter}}, {-2, -2, 0},
			{10, 22, 32}},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.what);
		model.keyframes = c.keyframes;
		expectBounds(visitNode(model, VisitOperation::GetBounds), c.min, c.max);
	}

	// A parametric surface has an empty box at the origin.
	model.setGeometry(new SceneNodeParametricSurface());
	expectBounds(visitNode(model, VisitOperation::GetBounds), {0, 0, 0}, {0, 0, 0});
}
