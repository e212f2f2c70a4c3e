// Tone mapping, section plane and parametric surface nodes.
#include "scene/geometry_test_helpers.h"
#include "scene/scene_node_parametric_surface.h"
#include "scene/scene_node_section_plane.h"
#include "scene/scene_node_tonemapping.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

using namespace Velorn;
using VelornTest::visitNode;

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

TEST(Tonemapping, CloneCopiesEveryKindsValues)
{
	Reference<SceneNodeTonemapping> t(new SceneNodeTonemapping(String("curve.txt"), 0.5, 800));
	t->uid = UID(5);
	t->linear_scale = 3;
	t->pre_scale = 2;
	t->post_scale = 1.5;
	t->burn = 4;
	Reference<SceneNode> copy = t->clone();
	for(int32_t kind : {1000, 1001, 1002})
	{
		t->tone_mapping_type = kind;
		copy.downcast<SceneNodeTonemapping>()->tone_mapping_type = kind;
		EXPECT_EQ(copy->toXMLString().str(), t->toXMLString().str());
	}
	visitNode(*t, VisitOperation::OffsetUIDs, 7);
	EXPECT_EQ(t->uid, UID(12));
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

TEST(SectionPlane, OffsetLeavesTheObjectListAndCloneCopiesIt)
{
	Reference<SceneNodeSectionPlane> plane(new SceneNodeSectionPlane());
	plane->uid = UID(1);
	plane->point = Vec3d(1, 2, 3);
	plane->cull_geometry = false;
	plane->object_list_type = SceneNodeSectionPlane::Include;
	plane->object_list = {UID(2), UID()};
	visitNode(*plane, VisitOperation::OffsetUIDs, 10);
	EXPECT_EQ(plane->uid, UID(11));
	EXPECT_EQ(plane->object_list, Vector<UID>({UID(2), UID()}));

	Reference<SceneNode> copy = plane->clone();
	EXPECT_TRUE(copy->doIsEqual(*plane));
	plane->object_list[0] = UID(3);
	EXPECT_FALSE(copy->doIsEqual(*plane));
}

TEST(ParametricSurface, NamesRunAndUnfinishedOperationsSaySo)
{
	VelornTest::expectRunningNames<SceneNodeParametricSurface>("ParametricSurface ");
	VelornTest::expectUnfinishedCloneAndEquality<SceneNodeParametricSurface>(
		"SceneNodeParametricSurface::clone() not yet implemented", "TODO: IMPLEMENT SceneNodeParametricSurface::doIsEqual()\n",
		[](SceneNodeParametricSurface& other) { other.num_u = 40; });

	SceneNodeParametricSurface surface;
	surface.uid = UID(3);
	visitNode(surface, VisitOperation::OffsetUIDs, 4);
	EXPECT_EQ(surface.uid, UID(7));
}
