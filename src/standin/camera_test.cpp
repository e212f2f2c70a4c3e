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

void expectDirection(const V3& actual, const V3& expected_unnormalised)
{
	const V3 e = normalise(expected_unnormalised);
	EXPECT_NEAR(actual.x, e.x, 1e-5f);
	EXPECT_NEAR(actual.y, e.y, 1e-5f);
	EXPECT_NEAR(actual.z, e.z, 1e-5f);
}

SceneNodeCamera& cameraOf(SceneNodeRoot& root)
{
	return static_cast<SceneNodeCamera&>(*root.getCameraNode());
}

TEST(Camera, FieldOfViewFollowsTheCameraNode)
{
	// A 36 mm sensor 18 mm from the lens sees 2 atan(18 / 18) = 90 degrees
	// across; the picture is 40 by 20, so the sensor is 18 mm high. The
	// exporter writes lens_sensor_dist = sensor / (2 tan(fov / 2)).
	Reference<SceneNodeRoot> root = StandinTest::makeRoot(40, 20, Vec3d(1, 2, 3), Vec3d(0, 1, 0), 0.036, 0.018);
	const Camera camera(cameraOf(*root), 40, 20);
	EXPECT_NEAR(camera.position.x, 1, 1e-6);
	EXPECT_NEAR(camera.position.z, 3, 1e-6);
	// Right is forwards x up = (1, 0, 0).
	const struct
	{
		float x, y;
		V3 direction;
	} cases[] = {
		{20, 10, V3(0, 1, 0)},                    // centre
		{40, 10, V3(1, 1, 0)},                    // right edge: 45 degrees
		{0, 10, V3(-1, 1, 0)},                    // left edge
		{20, 0, V3(0, 0.018f, 0.009f)},           // top edge: half the sensor height up
		{0, 20, V3(-0.018f, 0.018f, -0.009f)},    // bottom left corner
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(std::to_string(c.x) + ", " + std::to_string(c.y));
		const Ray ray = camera.generateRay(c.x, c.y, 0.3f, 0.7f);
		expectDirection(ray.dir, c.direction);
	}
}

TEST(Camera, ProjectsKnownPointsWhereTheNodeSays)
{
	// A camera at the origin looking along +y with a 36 mm sensor 36 mm
	// from the lens: a point (x, y, z) lands at film x = (x / y + 0.5) * w
	// and film y = (0.5 - z / y * 0.036 / sensor_height) * h.
	Reference<SceneNodeRoot> root = StandinTest::makeRoot(40, 20, Vec3d(0, 0, 0), Vec3d(0, 1, 0));
	const Camera camera(cameraOf(*root), 40, 20);
	const struct
	{
		V3 point;
		float film_x, film_y;
	} cases[] = {
		{V3(1, 5, 0.5f), 28, 6},   // 0.2 right, 0.1 * 0.036 / 0.018 = 0.2 up
		{V3(-2, 4, -0.5f), 0, 15}, // left edge, a quarter below the centre
	};
	for(const auto& c : cases)
	{
		const Ray ray = camera.generateRay(c.film_x, c.film_y, 0, 0);
		expectDirection(ray.dir, c.point);
	}
}

TEST(Camera, RotationOfTheKeyframeTurnsTheView)
{
	// A quarter turn about z takes forwards (0, 1, 0) to (-1, 0, 0).
	Reference<SceneNodeRoot> root = StandinTest::makeRoot(10, 10, Vec3d(0, 0, 0), Vec3d(0, 1, 0));
	cameraOf(*root).keyframes[0].rotation_angle = 3.14159265358979 / 2;
	const Camera camera(cameraOf(*root), 10, 10);
	expectDirection(camera.generateRay(5, 5, 0, 0).dir, V3(-1, 0, 0));
}

TEST(Camera, OrthographicRaysRunParallelFromTheSensor)
{
	// At (1, 2, 3) looking along +y, right +x, a sensor 4 m wide; the
	// picture is 40 by 20, so it is 2 m high. Every ray runs along +y
	// from its film point's place on the sensor.
	Reference<SceneNodeRoot> root = StandinTest::makeRoot(40, 20, Vec3d(1, 2, 3), Vec3d(0, 1, 0), 4);
	cameraOf(*root).camera_type = SceneNodeCamera::Orthographic;
	cameraOf(*root).lens_shift_up_distance = 0.25;
	const Camera camera(cameraOf(*root), 40, 20);
	const struct
	{
		float x, y;
		V3 origin;
	} cases[] = {
		{20, 10, V3(1, 2, 3.25f)},      // centre, shifted up
		{30, 5, V3(2, 2, 3.75f)},       // a quarter right and up: 1 m right, 0.5 m up
		{0, 20, V3(-1, 2, 2.25f)},      // bottom left corner
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(std::to_string(c.x) + ", " + std::to_string(c.y));
		const Ray ray = camera.generateRay(c.x, c.y, 0.3f, 0.7f);
		EXPECT_NEAR(ray.origin.x, c.origin.x, 1e-5f);
		EXPECT_NEAR(ray.origin.y, c.origin.y, 1e-5f);
		EXPECT_NEAR(ray.origin.z, c.origin.z, 1e-5f);
		expectDirection(ray.dir, V3(0, 1, 0));
	}
}

TEST(Camera, SphericalViewWrapsLongitudeAcrossAndLatitudeDown)
{
	// Looking along +y with +z up, right +x: the picture's middle is
	// forwards, its left and right edges behind, three quarters across is
	// right, the top edge straight up.
	Reference<SceneNodeRoot> root = StandinTest::makeRoot(40, 20, Vec3d(1, 2, 3), Vec3d(0, 1, 0));
	cameraOf(*root).camera_type = SceneNodeCamera::Spherical;
	const Camera camera(cameraOf(*root), 40, 20);
	const struct
	{
		float x, y;
		V3 direction;
	} cases[] = {
		{20, 10, V3(0, 1, 0)},
		{30, 10, V3(1, 0, 0)},
		{10, 10, V3(-1, 0, 0)},
		{0, 10, V3(0, -1, 0)},
		{20, 0, V3(0, 0, 1)},
		{25, 5, V3(0.5f, 0.5f, 0.70710678f)},  // 45 degrees right and 45 up
		{20, 15, V3(0, 1, -1)},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(std::to_string(c.x) + ", " + std::to_string(c.y));
		const Ray ray = camera.generateRay(c.x, c.y, 0.3f, 0.7f);
		EXPECT_NEAR(length(ray.origin - V3(1, 2, 3)), 0, 1e-6f);
		expectDirection(ray.dir, c.direction);
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
		EXPECT_NEAR(length(ray.origin - c.origin), 0, 1e-5f);
		expectDirection(ray.dir, c.direction);
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
