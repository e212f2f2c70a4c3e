#include "standin/camera.h"
#include "standin/standin_test_helpers.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Velorn
{
namespace Standin
{
namespace
{

using StandinTest::expectNear;

SceneNodeCamera& cameraOf(SceneNodeRoot& root)
{
	return static_cast<SceneNodeCamera&>(*root.getCameraNode());
}

enum class Kind
{
	Wide,
	Normal,
	Turned,
	Orthographic,
	Spherical,
};

// A camera at (1, 2, 3) looking along +y, up +z, right +x, over a picture
// of 40 by 20, with a 36 mm sensor (18 mm high) 18 mm from the lens (Wide)
// or 36 mm (the others); Turned is Normal a quarter turn about z, which
// takes forwards to -x. Orthographic has a sensor 4 m wide, shifted 0.25 m up.
Reference<SceneNodeRoot> cameraScene(Kind kind)
{
	const double sensor_width = kind == Kind::Orthographic ? 4 : 0.036;
	Reference<SceneNodeRoot> root = StandinTest::makeRoot(40, 20, Vec3d(1, 2, 3), Vec3d(0, 1, 0), sensor_width,
		kind == Kind::Wide ? 0.018 : 0.036);
	SceneNodeCamera& camera = cameraOf(*root);
	if(kind == Kind::Turned)
		camera.keyframes[0].rotation_angle = 3.14159265358979 / 2;
	if(kind == Kind::Orthographic)
	{
		camera.camera_type = SceneNodeCamera::Orthographic;
		camera.lens_shift_up_distance = 0.25;
	}
	if(kind == Kind::Spherical)
		camera.camera_type = SceneNodeCamera::Spherical;
	return root;
}

TEST(Camera, RaysOfEachProjectionFollowTheCameraNode)
{
	// The exporter writes lens_sensor_dist = sensor / (2 tan(fov / 2)): Wide
	// sees 2 atan(18 / 18) = 90 degrees across. Normal projects a point
	// (x, y, z) of the camera's frame to film x = (x / y + 0.5) * 40 and
	// film y = (0.5 - z / y * 0.036 / 0.018) * 20. The spherical view's
	// middle is forwards, its edges behind, its top straight up.
	const V3 eye(1, 2, 3);
	const struct
	{
		const char* name;
		Kind kind;
		float x, y;
		V3 origin, direction;
	} cases[] = {
		{"centre", Kind::Wide, 20, 10, eye, V3(0, 1, 0)},
		{"right edge: 45 degrees", Kind::Wide, 40, 10, eye, V3(1, 1, 0)},
		{"left edge", Kind::Wide, 0, 10, eye, V3(-1, 1, 0)},
		{"top edge: half the sensor height up", Kind::Wide, 20, 0, eye, V3(0, 0.018f, 0.009f)},
		{"bottom left corner", Kind::Wide, 0, 20, eye, V3(-0.018f, 0.018f, -0.009f)},
		{"point 0.2 right, 0.2 up", Kind::Normal, 28, 6, eye, V3(1, 5, 0.5f)},
		{"point on the left edge, a quarter down", Kind::Normal, 0, 15, eye, V3(-2, 4, -0.5f)},
		{"turned a quarter about z", Kind::Turned, 20, 10, eye, V3(-1, 0, 0)},
		{"orthographic centre, shifted up", Kind::Orthographic, 20, 10, V3(1, 2, 3.25f), V3(0, 1, 0)},
		{"orthographic, 1 m right and 0.5 m up", Kind::Orthographic, 30, 5, V3(2, 2, 3.75f), V3(0, 1, 0)},
		{"orthographic bottom left corner", Kind::Orthographic, 0, 20, V3(-1, 2, 2.25f), V3(0, 1, 0)},
		{"spherical middle", Kind::Spherical, 20, 10, eye, V3(0, 1, 0)},
		{"spherical three quarters across", Kind::Spherical, 30, 10, eye, V3(1, 0, 0)},
		{"spherical a quarter across", Kind::Spherical, 10, 10, eye, V3(-1, 0, 0)},
		{"spherical left edge", Kind::Spherical, 0, 10, eye, V3(0, -1, 0)},
		{"spherical top edge", Kind::Spherical, 20, 0, eye, V3(0, 0, 1)},
		{"spherical 45 degrees right and up", Kind::Spherical, 25, 5, eye, V3(0.5f, 0.5f, 0.70710678f)},
		{"spherical 45 degrees down", Kind::Spherical, 20, 15, eye, V3(0, 1, -1)},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.name);
		Reference<SceneNodeRoot> root = cameraScene(c.kind);
		const Ray ray = Camera(cameraOf(*root), 40, 20).generateRay(c.x, c.y, 0.3f, 0.7f);
		expectNear(ray.origin, c.origin, 1e-5f);
		expectNear(ray.dir, normalise(c.direction), 1e-5f);
	}
}

TEST(Camera, MovesAlongItsKeyframesWhileTheShutterIsOpen)
{
	// From the origin at time 0 to (2, 0, 0) at time 1, turning a quarter
	// about z on the way: halfway it stands at (1, 0, 0) looking 45 degrees
	// left of +y.
	Reference<SceneNodeRoot> root = StandinTest::makeRoot(10, 10, Vec3d(0, 0, 0), Vec3d(0, 1, 0));
	cameraOf(*root).keyframes.push_back(KeyFrame{Vec3d(2, 0, 0), 1, Vec3d(0, 0, 1), 3.14159265358979 / 2});
	const Camera camera(cameraOf(*root), 10, 10);
	EXPECT_TRUE(camera.moves());
	const struct
	{
		float time;
		V3 origin, direction;
	} cases[] = {
		{0, V3(0, 0, 0), V3(0, 1, 0)},
		{0.5f, V3(1, 0, 0), V3(-1, 1, 0)},
		{1, V3(2, 0, 0), V3(-1, 0, 0)},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.time);
		const Ray ray = camera.generateRay(5, 5, 0, 0, c.time);
		expectNear(ray.origin, c.origin, 1e-5f);
		expectNear(ray.dir, normalise(c.direction), 1e-5f);
		EXPECT_EQ(ray.time, c.time);
	}
}

TEST(Camera, ThinLensRaysMeetOnThePlaneOfFocus)
{
	Reference<SceneNodeRoot> root = StandinTest::makeRoot(10, 10, Vec3d(0, 0, 0), Vec3d(0, 1, 0));
	cameraOf(*root).aperture_radius = 0.05;
	cameraOf(*root).focus_distance = 4;
	const Camera camera(cameraOf(*root), 10, 10);
	// Through film point (7, 3) every lens point aims at the same point of
	// the plane y = 4: the pinhole ray's, (0.2 * 4, 4, 0.2 * 4).
	const float lens[][2] = {{0.1f, 0.2f}, {0.9f, 0.5f}, {0.5f, 0.95f}};
	for(const auto& l : lens)
	{
		const Ray ray = camera.generateRay(7, 3, l[0], l[1]);
		EXPECT_LE(length(ray.origin), 0.05f + 1e-6f);
		const float t = (4 - ray.origin.y) / ray.dir.y;
		const V3 p = ray.origin + ray.dir * t;
		EXPECT_NEAR(p.x, 0.8f, 1e-4f);
		EXPECT_NEAR(p.z, 0.8f, 1e-4f);
	}
}

} // namespace
} // namespace Standin
} // namespace Velorn
