#include "mesh/matrix4.h"

#include <cmath>
#include <utility>

namespace Velorn
{

Matrix4f Matrix4f::identity()
{
	Matrix4f m{};
	for(int i = 0; i < 4; ++i)
		m.e[i * 4 + i] = 1;
	return m;
}

bool Matrix4f::operator==(const Matrix4f& other) const
{
	for(int i = 0; i < 16; ++i)
		if(e[i] != other.e[i])
			return false;
	return true;
}

namespace
{

// Row operations on the augmented matrix [m | identity], eight columns.
struct Augmented
{
	double a[4][8];

	explicit Augmented(const Matrix4f& m)
	{
		for(int row = 0; row < 4; ++row)
			for(int column = 0; column < 8; ++column)
				a[row][column] = column < 4 ? (double)m(row, column) : (column - 4 == row ? 1.0 : 0.0);
	}

	int pivotRow(int column) const
	{
		int best = column;
		for(int row = column + 1; row < 4; ++row)
			if(std::fabs(a[row][column]) > std::fabs(a[best][column]))
				best = row;
		return best;
	}

	// Makes column a unit column with its 1 in row column; false on a zero pivot.
	bool eliminate(int column)
	{
		std::swap(a[column], a[pivotRow(column)]);
		const double pivot = a[column][column];
		if(pivot == 0)
			return false;
		for(double& value : a[column])
			value /= pivot;
		for(int row = 0; row < 4; ++row)
		{
			const double factor = a[row][column];
			if(row == column || factor == 0)
				continue;
			for(int k = 0; k < 8; ++k)
				a[row][k] -= factor * a[column][k];
		}
		return true;
	}
};

} // namespace

bool invert(const Matrix4f& m, Matrix4f& inverse_out)
{
	Augmented augmented(m);
	for(int column = 0; column < 4; ++column)
		if(!augmented.eliminate(column))
			return false;
	Matrix4f inverse;
	for(int row = 0; row < 4; ++row)
		for(int column = 0; column < 4; ++column)
		{
			const float value = (float)augmented.a[row][column + 4];
			if(!std::isfinite(value))
				return false;
			inverse.e[row * 4 + column] = value;
		}
	inverse_out = inverse;
	return true;
}

} // namespace Velorn
