// Camera, tone mapping, section plane and parametric surface elements, byte
// for byte.
#include "scene/scene_node_camera.h"
#include "scene/scene_node_parametric_surface.h"
#include "scene/scene_node_root.h"
#include "scene/scene_node_section_plane.h"
#include "scene/scene_node_tonemapping.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Velorn;

namespace
{

typedef Reference<SceneNode> Node;

Reference<SceneNodeCamera> cameraOfType(int type)
{
	Reference<SceneNodeCamera> cam(new SceneNodeCamera());
	cam->camera_type = (SceneNodeCamera::CameraType)type;
	return cam;
}

Node imageApertureCamera()
{
	Reference<SceneNodeCamera> cam = cameraOfType(SceneNodeCamera::Spherical);
	cam->uid = UID(42);
	cam->aperture_radius = (double)0.3f;
	cam->focus_distance = 1e21;
	cam->aperture_shape = new ApertureImage("apertures/hex.png");
	return cam;
}

// Every optional part of a camera, inside a scene.
Node generatedApertureScene()
{
	Reference<SceneNodeCamera> cam = cameraOfType(SceneNodeCamera::Orthographic);
	cam->setName("Main Camera");
	cam->aperture_radius = 0.005;
	cam->focus_distance = 3.5;
	cam->lens_sensor_dist = 0.05;
	cam->exposure_duration = 0.01;
	cam->lens_shift_up_distance = 0.001;
	cam->lens_shift_right_distance = -0.002;
	cam->autofocus = true;
	cam->obstacle_map_path = "maps/dust.png";
	cam->aperture_shape = new ApertureGenerated(6, 0.1, 0.333, 0);
	cam->keyframes.push_back(KeyFrame{Vec3d(1, 2, 3), 0, Vec3d(0, 0, 1), 0});
	cam->keyframes.push_back(KeyFrame{Vec3d(1.5, 2, 3), 1, Vec3d(0, 1, 0), 0.5});
	cam->up = Vec3d(0, 1, 0);
	cam->forwards = Vec3d(0, 0, -1);
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	root->addChildNode(cam);
	return root;
}

Node unknownToneMapping()
{
	Reference<SceneNodeTonemapping> t(new SceneNodeTonemapping(2.0));
	t->tone_mapping_type = 999;
	return t;
}

Node excludingSectionPlane()
{
	Reference<SceneNodeSectionPlane> plane(new SceneNodeSectionPlane());
	plane->object_list.push_back(UID(9));
	return plane;
}

Node includingSectionPlane()
{
	Reference<SceneNodeSectionPlane> plane(new SceneNodeSectionPlane());
	plane->uid = UID(3);
	plane->setName("Cut");
	plane->point = Vec3d(1, 2.5, -3);
	plane->normal = Vec3d(0, 0, -1);
	plane->enabled = false;
	plane->object_list_type = SceneNodeSectionPlane::Include;
	plane->object_list = {UID(5), UID(6)};
	return plane;
}

Node surface()
{
	Reference<SceneNodeParametricSurface> s(new SceneNodeParametricSurface());
	s->uid = UID(12);
	s->setName("Waves");
	s->shader = "def height(real u, real v) real : u * v";
	s->num_u = 64;
	s->num_v = 32;
	return s;
}

struct GoldenCase
{
	const char* golden;
	std::function<Node()> make;
};

} // namespace

TEST(GoldenNodes, NodesMatchTheirFiles)
{
	const GoldenCase cases[] = {
		{"camera_default.xml", [] { return Node(new SceneNodeCamera()); }},
		{"camera_unknown_type.xml", [] { return Node(cameraOfType(7)); }},
		{"camera_image_spherical.xml", imageApertureCamera},
		{"camera_generated_in_scene.xml", generatedApertureScene},
		{"tonemapping_linear.xml", [] { return Node(new SceneNodeTonemapping(0.333)); }},
		{"tonemapping_reinhard.xml", [] { return Node(new SceneNodeTonemapping(2, 0.5, 6)); }},
		{"tonemapping_camera.xml",
			[] { return Node(new SceneNodeTonemapping(String("data/camera_response_functions/dscs315.txt"), -1, 100)); }},
		{"tonemapping_unknown.xml", unknownToneMapping},
		{"section_plane_default.xml", [] { return Node(new SceneNodeSectionPlane()); }},
		{"section_plane_exclude_list.xml", excludingSectionPlane},
		{"section_plane_include.xml", includingSectionPlane},
		{"parametric_surface.xml", surface},
	};
	for(const GoldenCase& c : cases)
	{
		SCOPED_TRACE(c.golden);
		VelornTest::expectMatchesGolden(c.make()->toXMLString().str(), c.golden);
	}
}
