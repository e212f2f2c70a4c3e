#include "standin/motion_path.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Velorn
{
namespace Standin
{
namespace
{

const double pi_d = 3.14159265358979323846;

KeyFrame key(double time, const Vec3d& pos, double angle_about_z)
{
	return KeyFrame{pos, time, Vec3d(0, 0, 1), angle_about_z};
}

void expectNear(const Vec3d& actual, const Vec3d& expected)
{
	EXPECT_NEAR(actual.x, expected.x, 1e-9);
	EXPECT_NEAR(actual.y, expected.y, 1e-9);
	EXPECT_NEAR(actual.z, expected.z, 1e-9);
}

TEST(MotionPath, InterpolatesBetweenKeyframesAndHoldsBeyondThem)
{
	// Half a second of moving along x while turning a quarter about z, then
	// along y while turning another quarter. The x axis shows the turn.
	Vector<KeyFrame> keys;
	keys.push_back(key(0, Vec3d(0, 0, 0), 0));
	keys.push_back(key(0.5, Vec3d(2, 0, 0), pi_d / 2));
	keys.push_back(key(1, Vec3d(2, 4, 0), pi_d));
	const MotionPath path(keys);
	EXPECT_TRUE(path.moves());
	const double r = std::sqrt(0.5);
	const struct
	{
		double time;
		Vec3d position, turned_x;
	} cases[] = {
		{0, Vec3d(0, 0, 0), Vec3d(1, 0, 0)},
		{0.25, Vec3d(1, 0, 0), Vec3d(r, r, 0)},
		{0.5, Vec3d(2, 0, 0), Vec3d(0, 1, 0)},
		{0.75, Vec3d(2, 2, 0), Vec3d(-r, r, 0)},
		{-1, Vec3d(0, 0, 0), Vec3d(1, 0, 0)},
		{2, Vec3d(2, 4, 0), Vec3d(-1, 0, 0)},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.time);
		const Placement p = path.at(c.time);
		expectNear(p.position, c.position);
		expectNear(p.rotation * Vec3d(1, 0, 0), c.turned_x);
	}
}

TEST(MotionPath, TurnsTheShortWayAndKnowsWhenItStandsStill)
{
	// 350 degrees is 10 degrees back: halfway is 5 degrees back, not 175
	// forwards.
	Vector<KeyFrame> keys;
	keys.push_back(key(0, Vec3d(1, 2, 3), 0));
	keys.push_back(key(1, Vec3d(1, 2, 3), 350 * pi_d / 180));
	const MotionPath turning(keys);
	EXPECT_TRUE(turning.moves());
	expectNear(turning.at(0.5).rotation * Vec3d(1, 0, 0), Vec3d(std::cos(5 * pi_d / 180), -std::sin(5 * pi_d / 180), 0));

	Vector<KeyFrame> still;
	still.push_back(key(0, Vec3d(1, 2, 3), 0.3));
	EXPECT_FALSE(MotionPath(still).moves());
	still.push_back(key(1, Vec3d(1, 2, 3), 0.3));
	EXPECT_FALSE(MotionPath(still).moves());
	EXPECT_NEAR(MotionPath(still).at(0.7).position.y, 2, 1e-12);
	EXPECT_FALSE(MotionPath(Vector<KeyFrame>()).moves());
}

} // namespace
} // namespace Standin
} // namespace Velorn
