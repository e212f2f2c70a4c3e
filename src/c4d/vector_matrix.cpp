#include "c4d/vector_matrix.h"

#include <cmath>

namespace
{

// The direction d turned by the axes of m, without its offset.
Vector turn(const Matrix& m, const Vector& d)
{
	return d.x * m.v1 + d.y * m.v2 + d.z * m.v3;
}

} // namespace

Vector operator*(const Matrix& m, const Vector& p)
{
	return m.off + turn(m, p);
}

Matrix operator*(const Matrix& a, const Matrix& b)
{
	return Matrix(a * b.off, turn(a, b.v1), turn(a, b.v2), turn(a, b.v3));
}

Matrix Invert(const Matrix& m)
{
	// The rows of the inverse of the 3 by 3 part are the cross products of
	// the axes over the determinant; the offset is then undone in that frame.
	const double det = Dot(m.v1, Cross(m.v2, m.v3));
	if(det == 0 || !std::isfinite(det))
		return Matrix(Vector(), Vector(), Vector(), Vector());
	const Vector r1 = Cross(m.v2, m.v3) / det;
	const Vector r2 = Cross(m.v3, m.v1) / det;
	const Vector r3 = Cross(m.v1, m.v2) / det;
	Matrix inverse(Vector(), Vector(r1.x, r2.x, r3.x), Vector(r1.y, r2.y, r3.y), Vector(r1.z, r2.z, r3.z));
	inverse.off = -turn(inverse, m.off);
	return inverse;
}

Matrix HPBToMatrix(const Vector& hpb)
{
	const double ch = std::cos(hpb.x), sh = std::sin(hpb.x);
	const double cp = std::cos(hpb.y), sp = std::sin(hpb.y);
	const double cb = std::cos(hpb.z), sb = std::sin(hpb.z);
	const Matrix heading(Vector(), Vector(ch, 0, -sh), Vector(0, 1, 0), Vector(sh, 0, ch));
	const Matrix pitch(Vector(), Vector(1, 0, 0), Vector(0, cp, sp), Vector(0, -sp, cp));
	const Matrix bank(Vector(), Vector(cb, sb, 0), Vector(-sb, cb, 0), Vector(0, 0, 1));
	return heading * pitch * bank;
}

Vector MatrixToHPB(const Matrix& m)
{
	// With H * P * B the Z axis is (cos P sin H, -sin P, cos P cos H), and
	// the Y components of the X and Y axes are sin B cos P and cos B cos P.
	const Vector v1 = m.v1.GetNormalized(), v2 = m.v2.GetNormalized(), v3 = m.v3.GetNormalized();
	const double cp = std::sqrt(v3.x * v3.x + v3.z * v3.z);
	const double p = std::atan2(-v3.y, cp);
	if(cp < 1e-9)
	{
		// Gimbal lock: Z lies on the Y axis and the X axis is (cos H, 0, -sin H) with B = 0.
		return Vector(std::atan2(-v1.z, v1.x), p, 0);
	}
	return Vector(std::atan2(v3.x, v3.z), p, std::atan2(v1.y, v2.y));
}
