#pragma once

#include <cmath>

// The host's vector and matrix. A matrix is an affine transform given as an
// offset and three axes; a point p maps to off + p.x * v1 + p.y * v2 + p.z * v3.

struct Vector
{
	double x = 0, y = 0, z = 0;

	Vector() = default;
	Vector(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}

	Vector& operator+=(const Vector& o);
	Vector& operator-=(const Vector& o);
	Vector& operator*=(double s);

	double GetLength() const;
	// The vector scaled to length 1; a zero vector stays zero.
	Vector GetNormalized() const;

	bool operator==(const Vector& o) const { return x == o.x && y == o.y && z == o.z; }
	bool operator!=(const Vector& o) const { return !(*this == o); }
};

// Defined here so that loops over millions of points inline them.
inline double Dot(const Vector& a, const Vector& b)
{
	return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline Vector& Vector::operator+=(const Vector& o)
{
	x += o.x;
	y += o.y;
	z += o.z;
	return *this;
}

inline Vector& Vector::operator-=(const Vector& o)
{
	x -= o.x;
	y -= o.y;
	z -= o.z;
	return *this;
}

inline Vector& Vector::operator*=(double s)
{
	x *= s;
	y *= s;
	z *= s;
	return *this;
}

inline double Vector::GetLength() const
{
	return std::sqrt(Dot(*this, *this));
}

inline Vector operator+(Vector a, const Vector& b)
{
	return a += b;
}

inline Vector operator-(Vector a, const Vector& b)
{
	return a -= b;
}

inline Vector operator-(const Vector& a)
{
	return Vector(-a.x, -a.y, -a.z);
}

inline Vector operator*(Vector a, double s)
{
	return a *= s;
}

inline Vector operator*(double s, Vector a)
{
	return a *= s;
}

inline Vector operator/(const Vector& a, double s)
{
	return Vector(a.x / s, a.y / s, a.z / s);
}

// The component-wise product, as the application writes it.
inline Vector operator^(const Vector& a, const Vector& b)
{
	return Vector(a.x * b.x, a.y * b.y, a.z * b.z);
}

inline Vector Cross(const Vector& a, const Vector& b)
{
	return Vector(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
}

inline Vector Vector::GetNormalized() const
{
	const double length = GetLength();
	return length > 0 ? *this / length : *this;
}

struct Matrix
{
	Vector off;
	Vector v1{1, 0, 0};
	Vector v2{0, 1, 0};
	Vector v3{0, 0, 1};

	Matrix() = default;
	Matrix(const Vector& off_, const Vector& v1_, const Vector& v2_, const Vector& v3_)
		: off(off_), v1(v1_), v2(v2_), v3(v3_) {}

	bool operator==(const Matrix& o) const { return off == o.off && v1 == o.v1 && v2 == o.v2 && v3 == o.v3; }
	bool operator!=(const Matrix& o) const { return !(*this == o); }
};

// The point p transformed by m.
Vector operator*(const Matrix& m, const Vector& p);
// The transform that applies b first, then a.
Matrix operator*(const Matrix& a, const Matrix& b);
// The inverse transform. A matrix whose axes do not span space has none; it
// gives the zero matrix (all four vectors zero), which a caller can test for.
Matrix Invert(const Matrix& m);

// Rotation by heading, pitch and bank angles in radians (x, y, z of hpb):
// H turns about the Y axis (a positive H turns Z towards X), P about the X
// axis (Y towards Z), B about the Z axis (X towards Y), and the matrix is
// H * P * B, so bank is applied first. The offset is zero.
Matrix HPBToMatrix(const Vector& hpb);
// The angles that HPBToMatrix turns into the rotation of m, whose axes may
// be scaled: H and B in (-pi, pi], P in [-pi/2, pi/2]. At P = +-pi/2 only
// H - B (or H + B) is fixed; B is then 0.
Vector MatrixToHPB(const Matrix& m);
