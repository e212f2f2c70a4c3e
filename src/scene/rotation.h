#pragma once

#include "scene/math_types.h"
#include "scene/ostream.h"
#include "scene/value_helpers.h"
#include "support/reference.h"

namespace Velorn
{

// The orientation of a model or of a spherical texture projection.
class Rotation : public RefCounted
{
public:
	virtual ~Rotation();
	virtual void writeXML(OStream& stream, unsigned depth) const = 0;
	virtual unsigned getType() const = 0;
	virtual Reference<Rotation> clone() const = 0;
	// The rotation as a 3 by 3 matrix, row by row.
	virtual Matrix3d getMatrix() const = 0;
};

// Nine numbers, row by row; identity by default.
class MatrixRotation : public CopyCloned<MatrixRotation, Rotation>
{
public:
	MatrixRotation() = default;
	explicit MatrixRotation(const Matrix3d& matrix_) : matrix(matrix_) {}

	void writeXML(OStream& stream, unsigned depth) const override;
	unsigned getType() const override { return 0; }
	Matrix3d getMatrix() const override { return matrix; }

	Matrix3d matrix;
};

// A turn by angle (radians) about axis.
class AxisRotation : public CopyCloned<AxisRotation, Rotation>
{
public:
	AxisRotation() = default;
	AxisRotation(const Vec3d& axis_, double angle_) : axis(axis_), angle(angle_) {}

	void writeXML(OStream& stream, unsigned depth) const override;
	unsigned getType() const override { return 1; }
	Matrix3d getMatrix() const override { return Matrix3d::axisAngle(axis, angle); }

	Vec3d axis = Vec3d(0, 0, 1);
	double angle = 0;
};

} // namespace Velorn
