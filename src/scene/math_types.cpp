#include "scene/math_types.h"

#include <cmath>

namespace Velorn
{

Matrix3d Matrix3d::axisAngle(const Vec3d& axis, double angle)
{
	const double len = std::sqrt(axis.x * axis.x + axis.y * axis.y + axis.z * axis.z);
	if(len == 0)
		return Matrix3d();
	const double x = axis.x / len, y = axis.y / len, z = axis.z / len;
	const double c = std::cos(angle), s = std::sin(angle), t = 1 - c;
	Matrix3d m;
	const double e[9] = {t * x * x + c, t * x * y - s * z, t * x * z + s * y, t * x * y + s * z, t * y * y + c, t * y * z - s * x,
		t * x * z - s * y, t * y * z + s * x, t * z * z + c};
	for(int i = 0; i < 9; ++i)
		m.e[i] = e[i];
	return m;
}

Matrix3d Matrix3d::operator*(const Matrix3d& o) const
{
	Matrix3d r;
	for(int row = 0; row < 3; ++row)
		for(int col = 0; col < 3; ++col)
			r.e[row * 3 + col] = e[row * 3] * o.e[col] + e[row * 3 + 1] * o.e[3 + col] + e[row * 3 + 2] * o.e[6 + col];
	return r;
}

Matrix3d Matrix3d::operator*(double s) const
{
	Matrix3d r;
	for(int i = 0; i < 9; ++i)
		r.e[i] = e[i] * s;
	return r;
}

Vec3d Matrix3d::operator*(const Vec3d& v) const
{
	return Vec3d(e[0] * v.x + e[1] * v.y + e[2] * v.z, e[3] * v.x + e[4] * v.y + e[5] * v.z, e[6] * v.x + e[7] * v.y + e[8] * v.z);
}

} // namespace Velorn
