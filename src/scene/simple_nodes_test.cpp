// Tone mapping, section plane and parametric surface nodes.
#include "scene/scene_node_parametric_surface.h"
#include "scene/scene_node_section_plane.h"
#include "scene/scene_node_tonemapping.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

using namespace Velorn;

namespace
{

void offset(SceneNode& node, uint32_t by)
{
	VisitOperation op;
	op.type = VisitOperation::OffsetUIDs;
	op.uid_offset = by;
	node.doVisit(op);
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
	offset(*t, 7);
	EXPECT_EQ(t->uid, UID(12));
}

TEST(SectionPlane, EqualityComparesEveryField)
{
	const std::function<void(SceneNodeSectionPlane&)> changes[] = {
		[](SceneNodeSectionPlane& p) { p.point = Vec3d(0, 0, 1); },
		[](SceneNodeSectionPlane& p) { p.normal = Vec3d(1, 0, 0); },
		[](SceneNodeSectionPlane& p) { p.enabled = false; },
		[](SceneNodeSectionPlane& p) { p.cull_geometry = false; },
		[](SceneNodeSectionPlane& p) { p.object_list_type = SceneNodeSectionPlane::Include; },
		[](SceneNodeSectionPlane& p) { p.object_list[1] = UID(9); },
		[](SceneNodeSectionPlane& p) { p.object_list.push_back(UID(4)); },
		[](SceneNodeSectionPlane& p) { p.setName("cut"); },
	};
	SceneNodeSectionPlane reference;
	reference.object_list = {UID(2), UID(3)};
	for(size_t i = 0; i < sizeof(changes) / sizeof(changes[0]); ++i)
	{
		SCOPED_TRACE(i);
		SceneNodeSectionPlane changed;
		changed.object_list = {UID(2), UID(3)};
		EXPECT_TRUE(reference.doIsEqual(changed));
		changes[i](changed);
		EXPECT_FALSE(reference.doIsEqual(changed));
	}
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
	offset(*plane, 10);
	EXPECT_EQ(plane->uid, UID(11));
	EXPECT_EQ(plane->object_list, Vector<UID>({UID(2), UID()}));

	Reference<SceneNode> copy = plane->clone();
	EXPECT_TRUE(copy->doIsEqual(*plane));
	plane->object_list[0] = UID(3);
	EXPECT_FALSE(copy->doIsEqual(*plane));
}

TEST(ParametricSurface, NamesRunAndUnfinishedOperationsSaySo)
{
	SceneNodeParametricSurface surface;
	SceneNodeParametricSurface next;
	const std::string prefix = "ParametricSurface ";
	const std::string name = surface.getName().str();
	ASSERT_EQ(name.compare(0, prefix.size(), prefix), 0) << name;
	EXPECT_EQ(next.getName().str(), prefix + std::to_string(std::stoul(name.substr(prefix.size())) + 1));

	testing::internal::CaptureStdout();
	EXPECT_TRUE(surface.clone().isNull());
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "SceneNodeParametricSurface::clone() not yet implemented");

	// Equal base fields print the reminder; differing ones answer at once.
	next.setName(surface.getName());
	next.num_u = 40;
	testing::internal::CaptureStdout();
	EXPECT_TRUE(surface.doIsEqual(next));
	next.uid = UID(3);
	EXPECT_FALSE(surface.doIsEqual(next));
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "TODO: IMPLEMENT SceneNodeParametricSurface::doIsEqual()\n");

	offset(next, 4);
	EXPECT_EQ(next.uid, UID(7));
}
