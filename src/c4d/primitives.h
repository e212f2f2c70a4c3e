#pragma once

#include "c4d/base_object.h"

class PolygonObject;

// The parameters of the host's primitive generators, and their orientation.
enum
{
	// Osphere: real radius, long segments, long type (PRIM_SPHERE_TYPE_*),
	// bool perfect (render as an analytic sphere where possible).
	PRIM_SPHERE_RAD = 1110,
	PRIM_SPHERE_SUB = 1111,
	PRIM_SPHERE_TYPE = 1112,
	PRIM_SPHERE_PERFECT = 1113,
	// Ocube: vector size.
	PRIM_CUBE_LEN = 1100,
	// Odisc: real outer radius, long disc (ring) segments, long rotation segments.
	PRIM_DISC_ORAD = 1161,
	PRIM_DISC_SUB = 1162,
	PRIM_DISC_CSUB = 1163,
	// Oplane: real width and height, long subdivisions in width and height.
	PRIM_PLANE_WIDTH = 1230,
	PRIM_PLANE_HEIGHT = 1231,
	PRIM_PLANE_SUBW = 1232,
	PRIM_PLANE_SUBH = 1233,
	// Orientation of disc, plane and cylinder: PRIM_AXIS_*, the direction
	// their normal or height points to. The cube has none: its size is
	// along its own axes.
	PRIM_AXIS = 1300,
	// Ocylinder: real radius, real height, long rotation segments.
	PRIM_CYLINDER_RADIUS = 5000,
	PRIM_CYLINDER_HEIGHT = 5005,
	PRIM_CYLINDER_SEG = 5008,
};

enum
{
	PRIM_AXIS_XP = 0,
	PRIM_AXIS_XN = 1,
	PRIM_AXIS_YP = 2,
	PRIM_AXIS_YN = 3,
	PRIM_AXIS_ZP = 4,
	PRIM_AXIS_ZN = 5,
};

// Sphere types. The host builds the standard sphere for the types between
// (the platonic solids of the application).
enum
{
	PRIM_SPHERE_TYPE_STANDARD = 0,
	// The upper half, open at the bottom.
	PRIM_SPHERE_TYPE_HEMISPHERE = 5,
};

// The parameters a new primitive has in the host; every object of the type
// gets them when it is made.
void SetSphereDefaults(BaseContainer& data);
void SetCubeDefaults(BaseContainer& data);
void SetPlaneDefaults(BaseContainer& data);
void SetDiscDefaults(BaseContainer& data);
void SetCylinderDefaults(BaseContainer& data);

// Whether objects of the type are generators whose cache the host builds
// from their parameters (sphere, cube, plane, disc, cylinder).
bool IsPrimitiveType(int32_t type);

// The polygon object that the primitive generator makes of its parameters,
// as the host puts it into the generator's cache: points, polygons, a UVW
// tag and a Phong tag, the generator's name, an identity matrix. Counts of
// segments are held between the least the shape needs and 4096, lengths at
// 0 or more. A free object the caller owns; null for an object that is no
// primitive. docs/host-geometry.md describes the shapes.
PolygonObject* BuildPrimitive(const BaseObject& generator);

// The host's current-state conversion: a free polygon object the caller
// owns, a copy of the first polygon object of op's deform cache, op's cache
// and op itself. A primitive generator without a cache is built for it, as
// the application runs the generator. The copy has op's name and local
// matrix, copies of op's tags and, after them, of the tags of the copied
// cache whose types op has none of (its UVW and Phong tags). Null when
// there is no polygon object to copy.
PolygonObject* CurrentStateToObject(const BaseObject& op);
