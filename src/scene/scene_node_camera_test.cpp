#include "scene/geometry_test_helpers.h"
#include "scene/scene_node_camera.h"
#include "scene/scene_node_tonemapping.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace Velorn;
using VelornTest::classAndFailureOf;
using VelornTest::expectBounds;

namespace
{

Reference<SceneNodeCamera> camera() { return Reference<SceneNodeCamera>(new SceneNodeCamera()); }

Vector<String> dependenciesOf(SceneNodeCamera& cam)
{
	return VelornTest::visitNode(cam, VisitOperation::GetDependencies).dependency_paths;
}

} // namespace

TEST(Camera, DependsOnItsObstacleMapAndApertureImage)
{
	Reference<SceneNodeCamera> cam = camera();
	EXPECT_TRUE(dependenciesOf(*cam).empty());

	cam->aperture_shape = new ApertureGenerated(6, 0.1, 0.5, 0);
	cam->obstacle_map_path = "maps/dust.png";
	EXPECT_EQ(dependenciesOf(*cam), Vector<String>({"maps/dust.png"}));

	Reference<ApertureImage> image(new ApertureImage("apertures/hex.png"));
	cam->aperture_shape = image;
	EXPECT_EQ(dependenciesOf(*cam), Vector<String>({"maps/dust.png", "apertures/hex.png"}));

	VisitOperation update;
	update.type = VisitOperation::UpdatePaths;
	update.path_map.insert("maps/dust.png", "copy/dust.png");
	update.path_map.insert("apertures/hex.png", "copy/hex.png");
	cam->doVisit(update);
	EXPECT_EQ(cam->obstacle_map_path, String("copy/dust.png"));
	EXPECT_EQ(image->path, String("copy/hex.png"));

	// An empty obstacle map is neither a dependency nor looked up.
	cam->obstacle_map_path = "";
	update.path_map.insert("elsewhere.png", "copy/elsewhere.png");
	image->path = "elsewhere.png";
	EXPECT_EQ(dependenciesOf(*cam), Vector<String>({"elsewhere.png"}));
	EXPECT_EQ(classAndFailureOf([&] { cam->doVisit(update); }), "(no failure)");
}

TEST(Camera, BoundsAreTheApertureCubeAlongTheKeyframes)
{
	Reference<SceneNodeCamera> cam = camera();
	cam->aperture_radius = 0.5;
	expectBounds(VelornTest::visitNode(*cam, VisitOperation::GetBounds), {-0.5f, -0.5f, -0.5f}, {0.5f, 0.5f, 0.5f});

	// The second keyframe turns the cube by 45 degrees about z, so its
	// corners reach half a diagonal out in x and y.
	const float half_diagonal = (float)(0.5 * std::sqrt(2.0));
	cam->keyframes.push_back(KeyFrame{Vec3d(10, 0, 0), 0, Vec3d(0, 0, 1), 0});
	cam->keyframes.push_back(KeyFrame{Vec3d(0, 5, 2), 1, Vec3d(0, 0, 2), std::atan(1.0)});
	expectBounds(VelornTest::visitNode(*cam, VisitOperation::GetBounds), {-half_diagonal, -0.5f, -0.5f},
		{10.5f, 5 + half_diagonal, 2.5f});
}

TEST(Camera, EqualityComparesLensExposureAndDirections)
{
	VelornTest::expectEqualityCases<SceneNodeCamera>(camera, {
		{"aperture_radius", [](SceneNodeCamera& c) { c.aperture_radius = 0.002; }, false},
		{"focus_distance", [](SceneNodeCamera& c) { c.focus_distance = 2; }, false},
		{"sensor_width", [](SceneNodeCamera& c) { c.sensor_width = 0.024; }, false},
		{"lens_sensor_dist", [](SceneNodeCamera& c) { c.lens_sensor_dist = 0.05; }, false},
		{"exposure_duration", [](SceneNodeCamera& c) { c.exposure_duration = 0.01; }, false},
		{"lens_shift_up_distance", [](SceneNodeCamera& c) { c.lens_shift_up_distance = 0.001; }, false},
		{"lens_shift_right_distance", [](SceneNodeCamera& c) { c.lens_shift_right_distance = 0.001; }, false},
		{"autofocus", [](SceneNodeCamera& c) { c.autofocus = true; }, false},
		{"obstacle_map_path", [](SceneNodeCamera& c) { c.obstacle_map_path = "dust.png"; }, false},
		{"up", [](SceneNodeCamera& c) { c.up = Vec3d(0, 1, 0); }, false},
		{"forwards", [](SceneNodeCamera& c) { c.forwards = Vec3d(1, 0, 0); }, false},
		{"name", [](SceneNodeCamera& c) { c.setName("Other"); }, false},
		{"uid", [](SceneNodeCamera& c) { c.uid = UID(8); }, false},
		{"aperture_shape", [](SceneNodeCamera& c) { c.aperture_shape = new ApertureImage("a.png"); }, true},
		{"keyframes", [](SceneNodeCamera& c) { c.keyframes.push_back(KeyFrame()); }, true},
		{"camera_type", [](SceneNodeCamera& c) { c.camera_type = SceneNodeCamera::Spherical; }, true},
	});

	// A node of another type with the same UID and name is no camera.
	Reference<SceneNodeTonemapping> other(new SceneNodeTonemapping());
	other->setName("Camera");
	EXPECT_FALSE(camera()->doIsEqual(*other));
}
