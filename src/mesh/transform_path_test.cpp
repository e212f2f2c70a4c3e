#include "mesh/transform_path.h"

#include "support/exceptions.h"
#include "mesh/mesh_test_helpers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Velorn;

namespace
{

Matrix4f matrix(std::initializer_list<float> rows)
{
	Matrix4f m{};
	int i = 0;
	for(float v : rows)
		m.e[i++] = v;
	return m;
}

Matrix4f product(const Matrix4f& a, const Matrix4f& b)
{
	Matrix4f p{};
	for(int r = 0; r < 4; ++r)
		for(int c = 0; c < 4; ++c)
			for(int k = 0; k < 4; ++k)
				p.e[r * 4 + c] += a(r, k) * b(k, c);
	return p;
}

std::vector<TransformKeyframe> frames(std::initializer_list<double> times)
{
	std::vector<TransformKeyframe> keyframes;
	for(double t : times)
		keyframes.push_back(TransformKeyframe{t, Matrix4f::identity()});
	return keyframes;
}

void expectPathFailure(const Matrix4f& m, const std::vector<TransformKeyframe>& keyframes, const std::string& message)
{
	VelornTest::expectFailure<TransformPathExcep>([&] { TransformPath path(m, keyframes); }, message);
}

} // namespace

TEST(Matrix4f, InvertsOrRefuses)
{
	const Matrix4f moved = matrix({0, -2, 0, 5, 1, 0, 0, -3, 0, 0, 4, 1, 0, 0, 0, 1});
	Matrix4f inverse;
	ASSERT_TRUE(invert(moved, inverse));
	EXPECT_EQ(inverse, matrix({0, 1, 0, 3, -0.5f, 0, 0, 2.5f, 0, 0, 0.25f, -0.25f, 0, 0, 0, 1}));
	EXPECT_EQ(product(moved, inverse), Matrix4f::identity());

	// A full matrix whose first pivot is zero needs row swaps.
	const Matrix4f full = matrix({0, 2, 1, 3, 1, 1, 0, 2, 2, 0, 3, 1, 1, 4, 1, 0});
	ASSERT_TRUE(invert(full, inverse));
	const Matrix4f identity_ish = product(full, inverse);
	for(int i = 0; i < 16; ++i)
		EXPECT_NEAR(identity_ish.e[i], Matrix4f::identity().e[i], 1e-5) << i;

	const float huge = std::numeric_limits<float>::max();
	const Matrix4f refused[] = {
		Matrix4f{},
		matrix({1, 2, 3, 0, 2, 4, 6, 0, 0, 0, 1, 0, 0, 0, 0, 1}), // two rows in proportion
		matrix({1e-39f, 0, 0, 0, 0, 1e-39f, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}), // inverse beyond float
		matrix({huge, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, std::nanf("")}),
	};
	for(const Matrix4f& m : refused)
	{
		Matrix4f untouched = Matrix4f::identity();
		EXPECT_FALSE(invert(m, untouched));
		EXPECT_EQ(untouched, Matrix4f::identity());
	}
}

TEST(TransformPath, ChecksFramesAndMatrix)
{
	const Matrix4f scale2 = matrix({2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1});
	const TransformPath path(scale2, frames({0.0, 1.0}));
	EXPECT_EQ(path.getObToWorld(), scale2);
	EXPECT_EQ(path.getWorldToOb(), matrix({0.5f, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0, 1}));
	// One frame may stand for the whole interval; more may reach past it.
	EXPECT_NO_THROW(TransformPath(scale2, frames({0.7})));
	EXPECT_NO_THROW(TransformPath(scale2, frames({-0.5, 0.2, 0.9, 1.5})));

	struct Case
	{
		std::vector<TransformKeyframe> keyframes;
		Matrix4f m;
		std::string message;
	};
	const Case cases[] = {
		{{}, scale2, "Must be at least one frame."},
		{frames({0.0, 1.0}), Matrix4f{}, "transformation matrix is not invertible"},
		{frames({0.1, 1.0}), scale2, "First frame must have time <= 0.0"},
		{frames({std::nan(""), 1.0}), scale2, "First frame must have time <= 0.0"},
		{frames({0.0, 0.9}), scale2, "Last frame must have time >= 1.0"},
		{frames({0.0, 0.5, 0.5, 1.0}), scale2, "Frame times must be strictly increasing."},
		{frames({0.0, 0.6, 0.4, 1.0}), scale2, "Frame times must be strictly increasing."},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.message);
		expectPathFailure(c.m, c.keyframes, c.message);
	}
}
