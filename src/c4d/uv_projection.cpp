#include "c4d/uv_projection.h"

#include "c4d/base_document.h"
#include "c4d/camera_object.h"
#include "c4d/polygon_object.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"

#include <array>
#include <cmath>
#include <vector>

namespace
{

using Corners = std::array<Vector, 4>;

const Vector yAxis(0, 1, 0);
const Vector zAxis(0, 0, 1);

// The UV of q on a plane facing along the axis facing, seen from outside with
// up pointing up: the square from -1 to 1 in the right and up directions
// fills the texture, v growing downwards. (Looking along -facing in the
// host's left-handed space, right is facing x up.)
Vector planar(const Vector& q, const Vector& facing, const Vector& up)
{
	const Vector right = Cross(facing, up);
	return Vector(0.5 + Dot(q, right) / 2, 0.5 - Dot(q, up) / 2, 0);
}

// Flat: the plane facing -z, the side a camera looking along +z sees.
Vector flat(const Vector& q)
{
	return planar(q, -zAxis, yAxis);
}

// Spatial: flat, with the texture moving up and to the left the deeper (+z)
// the point lies.
Vector spatial(const Vector& q)
{
	return flat(Vector(q.x + q.z, q.y - q.z, 0));
}

template<typename Map>
UVWStruct eachCorner(const Corners& q, Map map)
{
	return {map(q[0]), map(q[1]), map(q[2]), map(q[3])};
}

// Cubic: flat onto the side of the projection's cube that the polygon faces
// most, each side seen from outside, top and bottom with +z up. Ties go to
// z, then to x; a degenerate polygon takes the front side (flat).
UVWStruct cubic(const Corners& q)
{
	const Vector n = Cross(q[2] - q[0], q[3] - q[1]);
	const double ax = std::fabs(n.x), ay = std::fabs(n.y), az = std::fabs(n.z);
	Vector facing(0, 0, n.z > 0 ? 1 : -1);
	Vector up = yAxis;
	if(ax > az && ax >= ay)
		facing = Vector(n.x > 0 ? 1 : -1, 0, 0);
	else if(ay > az)
	{
		facing = Vector(0, n.y > 0 ? 1 : -1, 0);
		up = zAxis;
	}
	return eachCorner(q, [&](const Vector& p) { return planar(p, facing, up); });
}

// The longitude of q about the y axis as u in [0, 1): 0.5 where the axis
// faces -z, growing towards +x, with the seam at +z. A point on the seam
// has u = 0 whatever the sign of its zero x.
double longitude(const Vector& q)
{
	const double u = 0.5 + std::atan2(q.x, -q.z) / (2 * M_PI);
	return u < 1 ? u : u - 1;
}

double latitude(const Vector& q)
{
	return 0.5 - std::atan2(q.y, std::hypot(q.x, q.z)) / M_PI;
}

double height(const Vector& q)
{
	return 0.5 - q.y / 2;
}

bool onYAxis(const Vector& q)
{
	return std::hypot(q.x, q.z) <= 1e-9 * q.GetLength();
}

// Spherical and cylindrical: u is the longitude, v comes from vOf. A polygon
// across the seam takes u beyond 1 on the side of small longitudes, so that
// its texture does not run back across the whole map; a corner on the axis
// has no longitude and takes the mean u of the polygon's other corners.
UVWStruct aroundY(const Corners& q, int32_t count, double (*vOf)(const Vector&))
{
	std::array<double, 4> u{};
	double lowest = 1, highest = 0;
	for(int32_t k = 0; k < count; ++k)
	{
		if(onYAxis(q[k]))
			continue;
		u[k] = longitude(q[k]);
		lowest = std::min(lowest, u[k]);
		highest = std::max(highest, u[k]);
	}
	double sum = 0;
	int32_t around = 0;
	for(int32_t k = 0; k < count; ++k)
	{
		if(onYAxis(q[k]))
			continue;
		if(highest - lowest > 0.5 && u[k] < 0.5)
			u[k] += 1;
		sum += u[k];
		++around;
	}
	Corners uv;
	for(int32_t k = 0; k < count; ++k)
		uv[k] = Vector(onYAxis(q[k]) ? (around ? sum / around : 0.5) : u[k], vOf(q[k]), 0);
	if(count == 3)
		uv[3] = uv[2];
	return {uv[0], uv[1], uv[2], uv[3]};
}

// How the active camera shows a point given in the camera's space: the
// film's width spans u from 0 to 1, its height v from 0 (top) to 1.
struct Lens
{
	bool parallel = false;
	// Perspective: the tangent of half the horizontal field of view.
	double tanHalfFov = 0;
	// Parallel: half the width of the view in host units.
	double halfWidth = 0;
	// Width over height of the rendered picture.
	double aspect = 1;

	Vector operator()(const Vector& c) const
	{
		const double half = parallel ? halfWidth : c.z * tanHalfFov;
		// Nothing is seen at or behind a perspective camera's plane.
		if(!(half > 0) || !std::isfinite(half))
			return Vector(0.5, 0.5, 0);
		return Vector(0.5 + c.x / (2 * half), 0.5 - c.y * aspect / (2 * half), 0);
	}
};

// The document op is in, through the generators of caches; null for a free object.
const BaseDocument* documentOf(const BaseObject* op)
{
	for(;;)
	{
		while(op->GetUp())
			op = op->GetUp();
		if(!op->GetCacheParent())
			break;
		op = op->GetCacheParent();
	}
	const GeListHead* head = op->GetListHead();
	return head ? dynamic_cast<const BaseDocument*>(head->GetMain()) : nullptr;
}

Lens lensOf(const BaseDocument& doc, const BaseObject& camera)
{
	const BaseContainer* data = camera.GetDataInstance();
	Lens lens;
	lens.parallel = data->GetInt32(CAMERA_PROJECTION) == CAMERA_PROJECTION_PARALLEL;
	lens.tanHalfFov = std::tan(data->GetFloat(CAMERA_FOV) / 2);
	lens.halfWidth = 512 / data->GetFloat(CAMERA_ZOOM);
	const BaseContainer* render = doc.GetActiveRenderData()->GetDataInstance();
	const double width = render->GetInt32(RDATA_XRES), pictureHeight = render->GetInt32(RDATA_YRES);
	if(width > 0 && pictureHeight > 0)
		lens.aspect = width / pictureHeight;
	return lens;
}

// The camera's world matrix with axes of length 1, so that its space
// measures host units.
Matrix cameraFrame(const BaseObject& camera)
{
	const Matrix mg = camera.GetMg();
	return Matrix(mg.off, mg.v1.GetNormalized(), mg.v2.GetNormalized(), mg.v3.GetNormalized());
}

UVWTag* copyOfUVWTag(const PolygonObject& op)
{
	const UVWTag* uvw = dynamic_cast<const UVWTag*>(op.GetTag(Tuvw));
	UVWTag* copy = uvw ? uvw->GetClone() : nullptr;
	if(copy)
		copy->Resize(op.GetPolygonCount());
	return copy;
}

// The UVs of one polygon whose corners are q in the projection's space (the
// camera's for frontal mapping through a lens), count of them distinct.
UVWStruct mapPolygon(int32_t projection, const Corners& q, int32_t count, const Lens* lens)
{
	switch(projection)
	{
	case TEXTURETAG_PROJECTION_SPHERICAL:
		return aroundY(q, count, latitude);
	case TEXTURETAG_PROJECTION_CYLINDRICAL:
		return aroundY(q, count, height);
	case TEXTURETAG_PROJECTION_CUBIC:
		return cubic(q);
	case TEXTURETAG_PROJECTION_FRONTAL:
		return lens ? eachCorner(q, *lens) : eachCorner(q, flat);
	case TEXTURETAG_PROJECTION_SPATIAL:
		return eachCorner(q, spatial);
	default:
		return eachCorner(q, flat);
	}
}

bool isProjection(int32_t projection)
{
	return projection >= TEXTURETAG_PROJECTION_SPHERICAL && projection <= TEXTURETAG_PROJECTION_SPATIAL;
}

} // namespace

UVWTag* GenerateUVW(const BaseObject* op, const Matrix& opmg, const TextureTag* tag, const Matrix& texopmg)
{
	const PolygonObject* poly = dynamic_cast<const PolygonObject*>(op);
	if(!poly || !tag || poly->GetPolygonCount() == 0)
		return nullptr;
	const int32_t projection = tag->GetDataInstance()->GetInt32(TEXTURETAG_PROJECTION);
	if(projection == TEXTURETAG_PROJECTION_UVW)
		return copyOfUVWTag(*poly);
	if(!isProjection(projection))
		return nullptr;

	// Frontal mapping looks through the document's camera; without one it
	// is flat mapping by the tag.
	const BaseDocument* doc = projection == TEXTURETAG_PROJECTION_FRONTAL ? documentOf(poly) : nullptr;
	const BaseObject* camera = doc ? doc->GetActiveCamera() : nullptr;
	const Matrix space = Invert(camera ? cameraFrame(*camera) : texopmg);
	if(space.v1 == Vector() && space.v2 == Vector() && space.v3 == Vector())
		return nullptr;
	const Lens lens = camera ? lensOf(*doc, *camera) : Lens();

	const int32_t pointCount = poly->GetPointCount();
	std::vector<Vector> inSpace(pointCount);
	const Matrix toSpace = space * opmg;
	for(int32_t i = 0; i < pointCount; ++i)
		inSpace[i] = toSpace * poly->GetPointR()[i];

	UVWTag* uvw = UVWTag::Alloc(poly->GetPolygonCount());
	if(!uvw)
		return nullptr;
	for(int32_t i = 0; i < poly->GetPolygonCount(); ++i)
	{
		const CPolygon& p = poly->GetPolygonR()[i];
		if(p.IsWithin(pointCount))
		{
			const Corners q = {inSpace[p.a], inSpace[p.b], inSpace[p.c], inSpace[p.d]};
			uvw->Set(i, mapPolygon(projection, q, p.IsTriangle() ? 3 : 4, camera ? &lens : nullptr));
		}
	}
	return uvw;
}
