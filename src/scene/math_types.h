#pragma once

namespace Velorn
{

// Three doubles: a point, a direction, a colour.
struct Vec3d
{
	double x = 0, y = 0, z = 0;

	Vec3d() = default;
	Vec3d(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}

	bool operator==(const Vec3d& o) const { return x == o.x && y == o.y && z == o.z; }
	bool operator!=(const Vec3d& o) const { return !(*this == o); }
};

struct Vec2d
{
	double x = 0, y = 0;

	Vec2d() = default;
	Vec2d(double x_, double y_) : x(x_), y(y_) {}

	bool operator==(const Vec2d& o) const { return x == o.x && y == o.y; }
};

// A 2 by 2 matrix, row by row.
struct Matrix2d
{
	double e[4] = {1, 0, 0, 1};

	Matrix2d() = default;
	Matrix2d(double e0, double e1, double e2, double e3) : e{e0, e1, e2, e3} {}

	bool operator==(const Matrix2d& o) const { return e[0] == o.e[0] && e[1] == o.e[1] && e[2] == o.e[2] && e[3] == o.e[3]; }
};

// A 3 by 3 matrix, row by row; identity by default.
struct Matrix3d
{
	double e[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};

	// The rotation by angle (radians) about axis, which need not be of unit
	// length; a zero axis gives the identity.
	static Matrix3d axisAngle(const Vec3d& axis, double angle);

	Matrix3d operator*(const Matrix3d& o) const;
	Matrix3d operator*(double s) const;
	Vec3d operator*(const Vec3d& v) const;
};

} // namespace Velorn
