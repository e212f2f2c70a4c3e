#include "export/motion_blur_export.h"

#include "scene/math_types.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{

// The host matrix rotated by angle about the host axis, each axis scaled.
Matrix rotated(const Vector& axis, double angle, double scale)
{
	const Velorn::Matrix3d r = Velorn::Matrix3d::axisAngle(Velorn::Vec3d(axis.x, axis.y, axis.z), angle);
	Matrix m;
	m.v1 = Vector(r.e[0], r.e[3], r.e[6]) * scale;
	m.v2 = Vector(r.e[1], r.e[4], r.e[7]) * scale;
	m.v3 = Vector(r.e[2], r.e[5], r.e[8]) * scale;
	return m;
}

// The rotation a static model placement gives, rows (v1.x, v3.x, v2.x),
// (v1.z, v3.z, v2.z), (v1.y, v3.y, v2.y), of the normalised axes.
Velorn::Matrix3d staticRotation(const Matrix& m)
{
	const Vector a = m.v1.GetNormalized(), b = m.v2.GetNormalized(), c = m.v3.GetNormalized();
	Velorn::Matrix3d r;
	const double e[9] = {a.x, c.x, b.x, a.z, c.z, b.z, a.y, c.y, b.y};
	for(int i = 0; i < 9; ++i)
		r.e[i] = e[i];
	return r;
}

} // namespace

TEST(MotionBlurExport, AxisAndAngleGiveTheStaticRotation)
{
	const Vector axes[] = {Vector(0, 1, 0), Vector(1, 0, 0), Vector(0, 0, 1), Vector(1, 2, -3).GetNormalized()};
	const double angles[] = {0.3, 1.2, 3.0, M_PI, -2.0};
	for(const Vector& axis : axes)
	{
		for(double angle : angles)
		{
			const Matrix m = rotated(axis, angle, 2.5);
			Velorn::Vec3d extracted_axis;
			double extracted_angle = 0;
			rotationAxisAngle(m, extracted_axis, extracted_angle);
			const Velorn::Matrix3d expected = staticRotation(m);
			const Velorn::Matrix3d got = Velorn::Matrix3d::axisAngle(extracted_axis, extracted_angle);
			for(int i = 0; i < 9; ++i)
				EXPECT_NEAR(got.e[i], expected.e[i], 1e-9) << "axis " << axis.x << " " << axis.y << " " << axis.z
														   << ", angle " << angle << ", entry " << i;
			EXPECT_GE(extracted_angle, 0);
			EXPECT_LE(extracted_angle, M_PI + 1e-12);
		}
	}

	// No rotation: the angle is 0 whatever the scale.
	Matrix scaled;
	scaled.v1 = Vector(3, 0, 0);
	Velorn::Vec3d axis;
	double angle = 1;
	rotationAxisAngle(scaled, axis, angle);
	EXPECT_EQ(angle, 0);

	// A rotation about the host's y axis turns about the renderer's z axis.
	rotationAxisAngle(rotated(Vector(0, 1, 0), 0.5, 1), axis, angle);
	EXPECT_NEAR(std::fabs(axis.z), 1, 1e-12);
	EXPECT_NEAR(angle, 0.5, 1e-12);
}

TEST(MotionBlurExport, PlacementKeyFrameAndChain)
{
	Matrix m;
	m.off = Vector(100, 200, 300);
	const Velorn::KeyFrame key = placementKeyFrame(m, 0.25, 0.01, Vector(0.5, 0.25, 1));
	// (x, z, y) times the scale, each minus the offset component of its name.
	EXPECT_NEAR(key.pos.x, 0.5, 1e-12);
	EXPECT_NEAR(key.pos.y, 2.0, 1e-12);
	EXPECT_NEAR(key.pos.z, 1.75, 1e-12);
	EXPECT_EQ(key.time, 0.25);

	BaseObject* top = BaseObject::Alloc(Onull);
	BaseObject* middle = BaseObject::Alloc(Onull);
	BaseObject* leaf = BaseObject::Alloc(Onull);
	middle->InsertUnder(top);
	leaf->InsertUnder(middle);
	EXPECT_EQ(objectChain(leaf), (std::vector<BaseObject*>{top, middle, leaf}));
	BaseObject::Free(top);
}
