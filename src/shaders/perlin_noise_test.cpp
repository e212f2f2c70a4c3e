#include "shaders/perlin_noise.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace
{

// The noise written straight from its definition rather than the nested
// form of the code: over the eight corners of the cell, the corner's
// gradient (by the low four bits of P[P[P[x] + y] + z], indices modulo 256)
// dotted with the offset from it, weighted by the faded distances.
double referenceNoise(double x, double y, double z)
{
	static const int kGradients[16][3] = {{1, 1, 0}, {-1, 1, 0}, {1, -1, 0}, {-1, -1, 0}, {1, 0, 1}, {-1, 0, 1},
		{1, 0, -1}, {-1, 0, -1}, {0, 1, 1}, {0, -1, 1}, {0, 1, -1}, {0, -1, -1}, {1, 1, 0}, {0, -1, 1}, {-1, 1, 0},
		{0, -1, -1}};
	auto perm = [](int i) { return PerlinNoise::kPermutation[((i % 256) + 256) % 256]; };
	auto fade = [](double t) { return 6 * std::pow(t, 5) - 15 * std::pow(t, 4) + 10 * std::pow(t, 3); };
	const int cx = (int)std::floor(x), cy = (int)std::floor(y), cz = (int)std::floor(z);
	const double fx = x - cx, fy = y - cy, fz = z - cz;
	double sum = 0;
	for(int i = 0; i < 2; ++i)
		for(int j = 0; j < 2; ++j)
			for(int k = 0; k < 2; ++k)
			{
				const int* g = kGradients[perm(perm(perm(cx + i) + cy + j) + cz + k) & 15];
				const double weight = (i ? fade(fx) : 1 - fade(fx)) * (j ? fade(fy) : 1 - fade(fy)) *
					(k ? fade(fz) : 1 - fade(fz));
				sum += weight * (g[0] * (fx - i) + g[1] * (fy - j) + g[2] * (fz - k));
			}
	return sum;
}

} // namespace

TEST(PerlinNoise, PublishedPermutationAndValuesAtFixedPoints)
{
	const int* p = PerlinNoise::kPermutation;
	const std::set<int> values(p, p + 256);
	EXPECT_TRUE(values.size() == 256u && *values.begin() == 0 && *values.rbegin() == 255);
	EXPECT_TRUE(p[0] == 151 && p[1] == 160 && p[2] == 137 && p[254] == 156 && p[255] == 180);

	PerlinNoise::refreshTable();
	for(double x : {0.0, 1.0, -3.0, 255.0, 256.0})
		EXPECT_EQ(PerlinNoise::noise(x, 7, -2), 0.0) << x;

	// By hand: on the edge y = z = 0 only corners (0,0,0) and (1,0,0) weigh,
	// by 1 - fade(0.25) and fade(0.25) = 0.103515625. Their hashes
	// P[P[P[0]]] = P[P[151]] = P[17] = 36 and P[P[P[1]]] = P[P[160]] = P[119]
	// = 86 pick gradients 4 (1,0,1) and 6 (1,0,-1): dots 0.25 and -0.75.
	EXPECT_DOUBLE_EQ(PerlinNoise::noise(0.25, 0, 0), 0.896484375 * 0.25 - 0.103515625 * 0.75);

	const double points[][3] = {{0.5, 0.5, 0.5}, {1.25, 2.75, 0.125}, {-0.3, 4.1, 7.9}, {10.01, -5.5, 0.0},
		{123.456, 78.9, -0.001}, {255.5, 256.5, 511.25}, {-1000.7, 3.3, 2.2}};
	for(const auto& q : points)
		EXPECT_NEAR(PerlinNoise::noise(q[0], q[1], q[2]), referenceNoise(q[0], q[1], q[2]), 1e-12)
			<< q[0] << " " << q[1] << " " << q[2];
}
