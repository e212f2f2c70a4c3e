#include "c4d/vector_matrix.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{

void expectNear(const Vector& a, const Vector& b)
{
	EXPECT_NEAR(a.x, b.x, 1e-12);
	EXPECT_NEAR(a.y, b.y, 1e-12);
	EXPECT_NEAR(a.z, b.z, 1e-12);
}

void expectNear(const Matrix& a, const Matrix& b)
{
	expectNear(a.off, b.off);
	expectNear(a.v1, b.v1);
	expectNear(a.v2, b.v2);
	expectNear(a.v3, b.v3);
}

} // namespace

TEST(Vector, Arithmetic)
{
	const Vector a(1, 2, 3), b(-4, 0.5, 2);
	EXPECT_EQ(a + b, Vector(-3, 2.5, 5));
	EXPECT_EQ(a - b, Vector(5, 1.5, 1));
	EXPECT_EQ(-a, Vector(-1, -2, -3));
	EXPECT_EQ(a * 2, Vector(2, 4, 6));
	EXPECT_EQ(2 * a, a * 2);
	EXPECT_EQ(a / 2, Vector(0.5, 1, 1.5));
	EXPECT_EQ(Dot(a, b), -4 + 1 + 6);
	EXPECT_EQ(Cross(a, b), Vector(2 * 2 - 3 * 0.5, 3 * -4 - 1 * 2, 1 * 0.5 - 2 * -4));
	EXPECT_EQ(Vector(3, 4, 0).GetLength(), 5);
	EXPECT_EQ(Vector(0, 0, -2).GetNormalized(), Vector(0, 0, -1));
	EXPECT_EQ(Vector().GetNormalized(), Vector());
}

TEST(Matrix, TransformsPointsOffsetFirstThenAxes)
{
	const Matrix m(Vector(10, 20, 30), Vector(0, 1, 0), Vector(-1, 0, 0), Vector(0, 0, 2));
	EXPECT_EQ(m * Vector(1, 2, 3), Vector(10 - 2, 20 + 1, 30 + 6));
	EXPECT_EQ(Matrix() * Vector(1, 2, 3), Vector(1, 2, 3));
	// a * b applies b first.
	const Matrix shift(Vector(1, 0, 0), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1));
	EXPECT_EQ((m * shift) * Vector(0, 0, 0), m * Vector(1, 0, 0));
	EXPECT_EQ((shift * m) * Vector(0, 0, 0), Vector(11, 20, 30));
}

TEST(Matrix, InverseRoundTrips)
{
	const double c = std::cos(0.7), s = std::sin(0.7);
	const struct
	{
		const char* name;
		Matrix m;
	} cases[] = {
		{"identity", Matrix()},
		{"translation", Matrix(Vector(1, -2, 3), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1))},
		{"rotation and offset", Matrix(Vector(5, 0, -1), Vector(c, s, 0), Vector(-s, c, 0), Vector(0, 0, 1))},
		{"non-uniform scale", Matrix(Vector(0, 2, 0), Vector(2, 0, 0), Vector(0, 0.5, 0), Vector(0, 0, -3))},
		{"shear", Matrix(Vector(1, 1, 1), Vector(1, 0, 0), Vector(0.5, 1, 0), Vector(0.2, 0.3, 1))},
		{"mirrored axes", Matrix(Vector(-4, 0, 9), Vector(0, 0, 1), Vector(0, 1, 0), Vector(1, 0, 0))},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.name);
		const Matrix inverse = Invert(t.m);
		expectNear(inverse * t.m, Matrix());
		expectNear(t.m * inverse, Matrix());
		expectNear(inverse * (t.m * Vector(0.3, -7, 2)), Vector(0.3, -7, 2));
		expectNear(Invert(inverse), t.m);
	}
}

TEST(Matrix, SingularMatrixInvertsToZero)
{
	const Matrix zero{Vector(), Vector(), Vector(), Vector()};
	EXPECT_EQ(Invert(Matrix(Vector(1, 2, 3), Vector(1, 0, 0), Vector(2, 0, 0), Vector(0, 0, 1))), zero);
	EXPECT_EQ(Invert(zero), zero);
}

TEST(Matrix, HPBAnglesTurnAboutYThenXThenZ)
{
	const double q = M_PI / 2;
	const struct
	{
		Vector hpb;
		Matrix expected;
	} cases[] = {
		// Heading turns Z towards X, pitch Y towards Z, bank X towards Y.
		{Vector(q, 0, 0), Matrix(Vector(), Vector(0, 0, -1), Vector(0, 1, 0), Vector(1, 0, 0))},
		{Vector(0, q, 0), Matrix(Vector(), Vector(1, 0, 0), Vector(0, 0, 1), Vector(0, -1, 0))},
		{Vector(0, 0, q), Matrix(Vector(), Vector(0, 1, 0), Vector(-1, 0, 0), Vector(0, 0, 1))},
		// H * P, the pitched axes turned by the heading; P * H would give X = (0, 1, 0).
		{Vector(q, q, 0), Matrix(Vector(), Vector(0, 0, -1), Vector(1, 0, 0), Vector(0, -1, 0))},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.hpb.x + 10 * t.hpb.y + 100 * t.hpb.z);
		expectNear(HPBToMatrix(t.hpb), t.expected);
	}

	// Back to the angles away from gimbal lock, also from scaled axes.
	for(const Vector& hpb : {Vector(0.3, -0.2, 0.1), Vector(-2.5, 1.2, 3.0), Vector(3.1, -1.5, -0.7)})
	{
		SCOPED_TRACE(hpb.x);
		Matrix m = HPBToMatrix(hpb);
		expectNear(MatrixToHPB(m), hpb);
		m.v1 *= 2;
		m.v3 *= 0.5;
		expectNear(MatrixToHPB(m), hpb);
	}
	// At a pitch of 90 degrees only heading minus bank counts: bank becomes 0.
	const Matrix locked = HPBToMatrix(Vector(0.9, q, 0.3));
	expectNear(MatrixToHPB(locked), Vector(0.6, q, 0));
	expectNear(HPBToMatrix(MatrixToHPB(locked)), locked);
}
