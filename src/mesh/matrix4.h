#pragma once

namespace Velorn
{

// A 4x4 matrix of floats, row-major, applied to column vectors: element
// (row, column) is e[row * 4 + column].
struct Matrix4f
{
	float e[16];

	static Matrix4f identity();

	float operator()(int row, int column) const { return e[row * 4 + column]; }
	bool operator==(const Matrix4f& other) const;
	bool operator!=(const Matrix4f& other) const { return !(*this == other); }
};

// Inverts m by Gauss-Jordan elimination with partial pivoting, in double
// precision. False when m is singular (a pivot is zero) or when the inverse
// has an entry that is not a finite float; inverse_out is then unchanged.
bool invert(const Matrix4f& m, Matrix4f& inverse_out);

} // namespace Velorn
