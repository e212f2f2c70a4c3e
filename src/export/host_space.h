#pragma once

#include "c4d/base_object.h"
#include "scene/math_types.h"

// The host's space is left-handed and y-up, the renderer's z-up: a host
// vector goes to the renderer with y and z exchanged, for positions, axes
// and normals alike.
inline Velorn::Vec3d swapYZ(const Vector& v)
{
	return Velorn::Vec3d(v.x, v.z, v.y);
}

// The object above op in the host's matrix chain: its parent, or for the
// top object of a cache the generator that made it; null at the top.
inline BaseObject* objectAbove(const BaseObject* op)
{
	BaseObject* parent = op->GetUp();
	return parent ? parent : op->GetCacheParent();
}
