// Tone mapping and section plane nodes, and what every node kind does alike.
#include "scene/geometry_test_helpers.h"
#include "scene/materials_basic.h"
#include "scene/materials_other.h"
#include "scene/scene_node_background_settings.h"
#include "scene/scene_node_camera.h"
#include "scene/scene_node_material.h"
#include "scene/scene_node_medium.h"
#include "scene/scene_node_mesh.h"
#include "scene/scene_node_metadata.h"
#include "scene/scene_node_model.h"
#include "scene/scene_node_parametric_surface.h"
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_root.h"
#include "scene/scene_node_scatter.h"
#include "scene/scene_node_section_plane.h"
#include "scene/scene_node_sphere.h"
#include "scene/scene_node_tonemapping.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

using namespace Velorn;
using VelornTest::visitNode;

namespace
{

// A new node of the kind, and a change to a node of the kind, for tables
// over several kinds.
template <class Node>
Reference<SceneNode> made()
{
	return new Node();
}

template <class Node>
std::function<void(SceneNode&)> changing(void (*change)(Node&))
{
	return [change](SceneNode& node) { change(static_cast<Node&>(node)); };
}

} // namespace

TEST(Tonemapping, ConstructorsChooseTheKindAndEqualityLooksOnlyAtIt)
{
	// The camera form takes the exposure adjustment before the film speed.
	SceneNodeTonemapping camera(String("curves/film.txt"), -1.5, 400);
	EXPECT_EQ(camera.tone_mapping_type, SceneNodeTonemapping::CameraResponse);
	EXPECT_EQ(camera.ev_adjust, -1.5);
	EXPECT_EQ(camera.film_iso, 400);
	EXPECT_EQ(SceneNodeTonemapping(3, 0.5, 7).tone_mapping_type, SceneNodeTonemapping::Reinhard);

	struct Case
	{
		const char* change;
		int32_t kind;
		std::function<void(SceneNodeTonemapping&)> apply;
		bool still_equal;
	};
	const Case cases[] = {
		{"linear scale", SceneNodeTonemapping::Linear, [](SceneNodeTonemapping& t) { t.linear_scale = 2; }, false},
		{"burn under linear", SceneNodeTonemapping::Linear, [](SceneNodeTonemapping& t) { t.burn = 1; }, true},
		{"pre_scale", SceneNodeTonemapping::Reinhard, [](SceneNodeTonemapping& t) { t.pre_scale = 1; }, false},
		{"post_scale", SceneNodeTonemapping::Reinhard, [](SceneNodeTonemapping& t) { t.post_scale = 2; }, false},
		{"burn", SceneNodeTonemapping::Reinhard, [](SceneNodeTonemapping& t) { t.burn = 1; }, false},
		{"response path", SceneNodeTonemapping::CameraResponse, [](SceneNodeTonemapping& t) { t.response_function_path = "x"; }, false},
		{"film_iso", SceneNodeTonemapping::CameraResponse, [](SceneNodeTonemapping& t) { t.film_iso = 100; }, false},
		{"ev_adjust", SceneNodeTonemapping::CameraResponse, [](SceneNodeTonemapping& t) { t.ev_adjust = 1; }, false},
		{"scale under camera", SceneNodeTonemapping::CameraResponse, [](SceneNodeTonemapping& t) { t.linear_scale = 2; }, true},
		{"kind", SceneNodeTonemapping::Linear, [](SceneNodeTonemapping& t) { t.tone_mapping_type = 1001; }, false},
		{"values of an unknown kind", 1234, [](SceneNodeTonemapping& t) { t.linear_scale = 9; }, true},
		{"uid", SceneNodeTonemapping::Linear, [](SceneNodeTonemapping& t) { t.uid = UID(1); }, false},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.change);
		SceneNodeTonemapping a, b;
		a.tone_mapping_type = b.tone_mapping_type = c.kind;
		c.apply(b);
		EXPECT_EQ(a.doIsEqual(b), c.still_equal);
	}
}

TEST(SectionPlane, EqualityComparesEveryField)
{
	const auto listing = [] {
		Reference<SceneNodeSectionPlane> plane(new SceneNodeSectionPlane());
		plane->object_list = {UID(2), UID(3)};
		return plane;
	};
	VelornTest::expectEqualityCases<SceneNodeSectionPlane>(listing,
		{
			{"point", [](SceneNodeSectionPlane& p) { p.point = Vec3d(0, 0, 1); }, false},
			{"normal", [](SceneNodeSectionPlane& p) { p.normal = Vec3d(1, 0, 0); }, false},
			{"enabled", [](SceneNodeSectionPlane& p) { p.enabled = false; }, false},
			{"cull_geometry", [](SceneNodeSectionPlane& p) { p.cull_geometry = false; }, false},
			{"object_list_type", [](SceneNodeSectionPlane& p) { p.object_list_type = SceneNodeSectionPlane::Include; }, false},
			{"an object", [](SceneNodeSectionPlane& p) { p.object_list[1] = UID(9); }, false},
			{"another object", [](SceneNodeSectionPlane& p) { p.object_list.push_back(UID(4)); }, false},
			{"name", [](SceneNodeSectionPlane& p) { p.setName("cut"); }, false},
		});
	// A node of another type with the same empty name and UID is no plane.
	SceneNodeTonemapping other;
	other.setName("");
	EXPECT_FALSE(SceneNodeSectionPlane().doIsEqual(other));
}

TEST(SectionPlane, OffsetLeavesTheObjectList)
{
	SceneNodeSectionPlane plane;
	plane.object_list = {UID(2), UID()};
	visitNode(plane, VisitOperation::OffsetUIDs, 10);
	EXPECT_EQ(plane.object_list, Vector<UID>({UID(2), UID()}));
}

// Each kind moves its own UID in its own walk; an invalid UID stays invalid.
TEST(NodeKinds, EveryKindMovesItsUIDByTheOffset)
{
	const Reference<SceneNode> nodes[] = {new SceneNodeMesh(), new SceneNodeSphere(), new SceneNodeScatter(),
		new SceneNodeBackgroundSettings(), new SceneNodeCamera(), new SceneNodeTonemapping(), new SceneNodeSectionPlane(),
		new SceneNodeParametricSurface(), new SceneNodeRenderSettings(), new SceneNodeModel(), new SceneNodeMaterial(),
		new SceneNodeMedium(), new SceneNodeMetaData()};
	for(const Reference<SceneNode>& node : nodes)
	{
		SCOPED_TRACE(node->getName().str());
		visitNode(*node, VisitOperation::OffsetUIDs, 7);
		EXPECT_FALSE(node->uid.valid());
		node->uid = UID(3);
		visitNode(*node, VisitOperation::OffsetUIDs, 7);
		EXPECT_EQ(node->uid, UID(10));
	}
}

// A copy writes what its original wrote, keeps its flags and change stamp,
// and owns its values: changing the original afterwards reaches none of it.
TEST(NodeKinds, CopiesWriteAsTheirOriginalAndOwnTheirValues)
{
	const auto toneMapping = [](int32_t kind) {
		Reference<SceneNodeTonemapping> t(new SceneNodeTonemapping(String("curve.txt"), 0.5, 800));
		t->tone_mapping_type = kind;
		t->linear_scale = 3;
		t->pre_scale = 2;
		t->post_scale = 1.5;
		t->burn = 4;
		return Reference<SceneNode>(t);
	};
	struct Case
	{
		const char* what;
		std::function<Reference<SceneNode>()> make;
		std::function<void(SceneNode&)> change;
	};
	const Case cases[] = {
		{"linear", [&] { return toneMapping(SceneNodeTonemapping::Linear); }, [](SceneNode&) {}},
		{"reinhard", [&] { return toneMapping(SceneNodeTonemapping::Reinhard); }, [](SceneNode&) {}},
		{"camera response", [&] { return toneMapping(SceneNodeTonemapping::CameraResponse); }, [](SceneNode&) {}},
		{"camera",
			[] {
				Reference<SceneNodeCamera> cam(new SceneNodeCamera());
				cam->aperture_radius = 0.004;
				cam->lens_shift_right_distance = -0.25;
				cam->autofocus = true;
				cam->obstacle_map_path = "dust.png";
				cam->forwards = Vec3d(0, 0, -1);
				cam->aperture_shape = new ApertureGenerated(5, 0.2, 0.3, 0.4);
				cam->keyframes.push_back(KeyFrame{Vec3d(1, 2, 3), 0.5, Vec3d(0, 0, 1), 0.5});
				cam->camera_type = SceneNodeCamera::Orthographic;
				return Reference<SceneNode>(cam);
			},
			[](SceneNode& n) { static_cast<SceneNodeCamera&>(n).aperture_shape.downcast<ApertureGenerated>()->num_blades = 9; }},
		{"section plane",
			[] {
				Reference<SceneNodeSectionPlane> plane(new SceneNodeSectionPlane());
				plane->point = Vec3d(1, 2, 3);
				plane->object_list_type = SceneNodeSectionPlane::Include;
				plane->object_list = {UID(2), UID(4)};
				return Reference<SceneNode>(plane);
			},
			[](SceneNode& n) { static_cast<SceneNodeSectionPlane&>(n).object_list[0] = UID(3); }},
		{"render settings",
			[] {
				Reference<SceneNodeRenderSettings> s = SceneNodeRenderSettings::getDefaults();
				s->setRenderRegion(new RenderRegion(0, 100, 0, 50));
				s->setGPUDevice(new GPUDeviceSettings("card", GPUDeviceSettings::CUDA));
				s->setSplatFilter(new SplatFilterMNCubic(0.5, 0.5));
				s->setNumLayers(2);
				return Reference<SceneNode>(s);
			},
			[](SceneNode& n) {
				SceneNodeRenderSettings& s = static_cast<SceneNodeRenderSettings&>(n);
				s.setInt("width", 1);
				s.splat_filter.downcast<SplatFilterMNCubic>()->ring = 0.75;
				s.downsize_filter.downcast<DownsizeFilterMNCubic>()->radius = 3;
				s.white_point->x = 0.5;
				s.render_region->x2 = 7;
				s.gpu_device->device_name = "other";
				s.layer_settings[0]->name = "Renamed";
			}},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.what);
		const Reference<SceneNode> original = c.make();
		original->uid = UID(21);
		original->setName("Original");
		original->setFlags(2);
		original->setChangeStamp(9);
		const std::string written = original->toXMLString().str();
		const Reference<SceneNode> copy = original->clone();
		ASSERT_TRUE(copy.nonNull());
		c.change(*original);
		EXPECT_EQ(copy->toXMLString().str(), written);
		EXPECT_EQ(copy->getFlags(), 2u);
		EXPECT_EQ(copy->getChangeStamp(), 9u);
	}
}

// New nodes are named by a running number.
TEST(NodeKinds, NamesRun)
{
	VelornTest::expectRunningNames<SceneNodeMesh>("Mesh");
	VelornTest::expectRunningNames<SceneNodeScatter>("Scatter ");
	VelornTest::expectRunningNames<SceneNodeParametricSurface>("ParametricSurface ");
}

// Kinds whose copy is unfinished say so and give none.
TEST(NodeKinds, UnfinishedCopiesSaySo)
{
	const std::pair<Reference<SceneNode>, const char*> cases[] = {
		{made<SceneNodeRoot>(), "SceneNodeRoot::clone() not yet implemented\n"},
		{made<SceneNodeMesh>(), "SceneNodeMesh::clone() not yet implemented"},
		{made<SceneNodeScatter>(), "SceneNodeScatter::clone() not yet implemented"},
		{made<SceneNodeParametricSurface>(), "SceneNodeParametricSurface::clone() not yet implemented"},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.second);
		testing::internal::CaptureStdout();
		EXPECT_TRUE(c.first->clone().isNull());
		EXPECT_EQ(testing::internal::GetCapturedStdout(), c.second);
	}
}

// Kinds whose comparison is unfinished compare UID and name alone, and print
// their reminder when those agree; the render settings print it always.
TEST(NodeKinds, UnfinishedComparisonsLookAtUIDAndNameAndSaySo)
{
	struct Case
	{
		std::function<Reference<SceneNode>()> make;
		std::function<void(SceneNode&)> vary;
		std::string printed;
	};
	const Case cases[] = {
		{made<SceneNodeMesh>, changing<SceneNodeMesh>([](SceneNodeMesh& m) { m.scale = 2; }),
			"TODO: IMPLEMENT SceneNodeMesh::doIsEqual()\n"},
		{made<SceneNodeScatter>, changing<SceneNodeScatter>([](SceneNodeScatter& s) { s.geometry_uid = UID(9); }),
			"TODO: IMPLEMENT SceneNodeScatter::doIsEqual()\n"},
		{made<SceneNodeParametricSurface>,
			changing<SceneNodeParametricSurface>([](SceneNodeParametricSurface& s) { s.num_u = 40; }),
			"TODO: IMPLEMENT SceneNodeParametricSurface::doIsEqual()\n"},
		{made<SceneNodeSphere>, changing<SceneNodeSphere>([](SceneNodeSphere& s) { s.radius = 2; }),
			"TODO: IMPLEMENT SceneNodeSphere::doIsEqual()\n"},
		{made<SceneNodeBackgroundSettings>,
			changing<SceneNodeBackgroundSettings>(
				[](SceneNodeBackgroundSettings& b) { b.background_material = new SunSkyMaterial(); }),
			"TODO: IMPLEMENT SceneNodeBackgroundSettings::doIsEqual()"},
		{made<SceneNodeMaterial>, changing<SceneNodeMaterial>([](SceneNodeMaterial& m) { m.material = new PhongMaterial(); }),
			"TODO: IMPLEMENT SceneNodeMaterial::doIsEqual()\n"},
		{made<SceneNodeMedium>, changing<SceneNodeMedium>([](SceneNodeMedium& m) { m.medium->precedence = 3; }),
			"TODO: IMPLEMENT SceneNodeMedium::doIsEqual()\n"},
		{made<SceneNodeRenderSettings>,
			changing<SceneNodeRenderSettings>([](SceneNodeRenderSettings& s) { s.setInt("width", 1); }),
			"TODO: IMPLEMENT SceneNodeRenderSettings::doIsEqual()TODO: IMPLEMENT SceneNodeRenderSettings::doIsEqual()"},
	};
	for(const Case& c : cases)
	{
		const Reference<SceneNode> node = c.make();
		SCOPED_TRACE(node->getName().str());
		const Reference<SceneNode> other = c.make();
		c.vary(*other);
		for(SceneNode* n : {node.getPointer(), other.getPointer()})
		{
			n->uid = UID(5);
			n->setName("Same");
		}
		testing::internal::CaptureStdout();
		EXPECT_TRUE(node->doIsEqual(*other));
		other->setName("Different");
		EXPECT_FALSE(node->doIsEqual(*other));
		EXPECT_EQ(testing::internal::GetCapturedStdout(), c.printed);
	}
}
