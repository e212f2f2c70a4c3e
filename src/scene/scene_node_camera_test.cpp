#include "scene/scene_node_camera.h"
#include "scene/scene_node_tonemapping.h"
#include "support/exceptions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace Velorn;

namespace
{

Reference<SceneNodeCamera> camera() { return Reference<SceneNodeCamera>(new SceneNodeCamera()); }

VisitOperation visit(SceneNodeCamera& cam, VisitOperation::Type type)
{
	VisitOperation op;
	op.type = type;
	op.uid_offset = 100;
	cam.doVisit(op);
	return op;
}

} // namespace

TEST(Camera, DependsOnItsObstacleMapAndApertureImage)
{
	Reference<SceneNodeCamera> cam = camera();
	EXPECT_TRUE(visit(*cam, VisitOperation::GetDependencies).dependency_paths.empty());

	cam->aperture_shape = new ApertureGenerated(6, 0.1, 0.5, 0);
	cam->obstacle_map_path = "maps/dust.png";
	EXPECT_EQ(visit(*cam, VisitOperation::GetDependencies).dependency_paths, Vector<String>({"maps/dust.png"}));

	Reference<ApertureImage> image(new ApertureImage("apertures/hex.png"));
	cam->aperture_shape = image;
	EXPECT_EQ(visit(*cam, VisitOperation::GetDependencies).dependency_paths,
		Vector<String>({"maps/dust.png", "apertures/hex.png"}));

	VisitOperation update;
	update.type = VisitOperation::UpdatePaths;
	update.path_map.insert("maps/dust.png", "copy/dust.png");
	update.path_map.insert("apertures/hex.png", "copy/hex.png");
	cam->doVisit(update);
	EXPECT_EQ(cam->obstacle_map_path, String("copy/dust.png"));
	EXPECT_EQ(image->path, String("copy/hex.png"));

	// An empty obstacle map is neither a dependency nor looked up; a path
	// without a mapping fails.
	cam->obstacle_map_path = "";
	image->path = "elsewhere.png";
	EXPECT_EQ(visit(*cam, VisitOperation::GetDependencies).dependency_paths, Vector<String>({"elsewhere.png"}));
	try
	{
		cam->doVisit(update);
		ADD_FAILURE() << "a path without mapping was accepted";
	}
	catch(const VelornException& e)
	{
		EXPECT_EQ(e.what(), "While updating dependencies: Missing mapping for old path 'elsewhere.png'.");
	}
}

TEST(Camera, BoundsAreTheApertureCubeAlongTheKeyframesAndOffsetsOnlyTheUID)
{
	Reference<SceneNodeCamera> cam = camera();
	cam->aperture_radius = 0.5;
	VisitOperation at_origin = visit(*cam, VisitOperation::GetBounds);
	for(int i = 0; i < 3; ++i)
	{
		EXPECT_EQ(at_origin.bounds_min[i], -0.5f);
		EXPECT_EQ(at_origin.bounds_max[i], 0.5f);
	}

	// The second keyframe turns the cube by 45 degrees about z, so its
	// corners reach half a diagonal out in x and y.
	const float half_diagonal = (float)(0.5 * std::sqrt(2.0));
	cam->keyframes.push_back(KeyFrame{Vec3d(10, 0, 0), 0, Vec3d(0, 0, 1), 0});
	cam->keyframes.push_back(KeyFrame{Vec3d(0, 5, 2), 1, Vec3d(0, 0, 2), std::atan(1.0)});
	VisitOperation moving = visit(*cam, VisitOperation::GetBounds);
	const float expected_min[3] = {-half_diagonal, -0.5f, -0.5f};
	const float expected_max[3] = {10.5f, 5 + half_diagonal, 2.5f};
	for(int i = 0; i < 3; ++i)
	{
		EXPECT_NEAR(moving.bounds_min[i], expected_min[i], 1e-5);
		EXPECT_NEAR(moving.bounds_max[i], expected_max[i], 1e-5);
	}

	cam->uid = UID(4);
	visit(*cam, VisitOperation::Bind);
	visit(*cam, VisitOperation::OffsetUIDs);
	EXPECT_EQ(cam->uid, UID(104));
}

TEST(Camera, EqualityComparesLensExposureAndDirections)
{
	struct Case
	{
		const char* change;
		std::function<void(SceneNodeCamera&)> apply;
		bool still_equal;
	};
	const Case cases[] = {
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
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.change);
		Reference<SceneNodeCamera> changed = camera();
		c.apply(*changed);
		EXPECT_EQ(camera()->doIsEqual(*changed), c.still_equal);
		EXPECT_EQ(changed->doIsEqual(*camera()), c.still_equal);
	}

	// A node of another type with the same UID and name is no camera.
	Reference<SceneNodeTonemapping> other(new SceneNodeTonemapping());
	other->setName("Camera");
	EXPECT_FALSE(camera()->doIsEqual(*other));
}

TEST(Camera, CloneCopiesEveryFieldAndTheShape)
{
	Reference<SceneNodeCamera> cam = camera();
	cam->uid = UID(21);
	cam->aperture_radius = 0.004;
	cam->lens_shift_right_distance = -0.25;
	cam->autofocus = true;
	cam->obstacle_map_path = "dust.png";
	cam->aperture_shape = new ApertureGenerated(5, 0.2, 0.3, 0.4);
	cam->keyframes.push_back(KeyFrame{Vec3d(1, 2, 3), 0.5, Vec3d(0, 0, 1), 0.5});
	cam->forwards = Vec3d(0, 0, -1);
	cam->camera_type = SceneNodeCamera::Orthographic;
	const std::string written = cam->toXMLString().str();

	Reference<SceneNode> copy = cam->clone();
	EXPECT_TRUE(copy->doIsEqual(*cam));
	cam->aperture_shape.downcast<ApertureGenerated>()->num_blades = 9;
	EXPECT_EQ(copy->toXMLString().str(), written);
}

TEST(Camera, PathsAreJoinedToTheSceneDirectoryOnRequest)
{
	Reference<SceneNodeCamera> cam = camera();
	cam->obstacle_map_path = "dust.png";
	cam->aperture_shape = new ApertureImage("hex.png");
	WriteContext context;
	context.scene_dir = "/scenes/";
	context.write_absolute_paths = true;
	BufferOStream stream;
	cam->writeXML(stream, 0, context);
	EXPECT_NE(stream.str().find("\t\t<path>/scenes/dust.png</path>\n"), std::string::npos) << stream.str();
	EXPECT_NE(stream.str().find("\t\t\t<path>/scenes/hex.png</path>\n"), std::string::npos) << stream.str();
}
