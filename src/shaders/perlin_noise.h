#pragma once

// Improved gradient noise in three dimensions, after Ken Perlin's published
// reference: his 256-entry permutation, doubled to 512 entries so that
// hashes need no wrapping, the fade curve 6t^5 - 15t^4 + 10t^3 and twelve
// edge gradients. The result lies in about [-1, 1] and is 0 on every
// lattice point.
namespace PerlinNoise
{

// The published permutation of 0..255.
extern const int kPermutation[256];

// Fills the doubled table from kPermutation. The table is one for the
// process and always holds the same values, so that concurrent refreshes
// and samples see a usable table throughout.
void refreshTable();

double noise(double x, double y, double z);

} // namespace PerlinNoise
