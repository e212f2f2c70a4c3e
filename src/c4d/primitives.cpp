#include "c4d/primitives.h"

#include "c4d/polygon_object.h"
#include "c4d/variable_tags.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

namespace
{

// More segments than this in one direction are refused by holding the count
// here: a document's number should not decide how much memory the host takes.
constexpr int32_t maxSegments = 4096;

int32_t segmentsOf(const BaseContainer& data, int32_t id, int32_t least)
{
	return std::clamp(data.GetInt32(id), least, maxSegments);
}

double lengthOf(const BaseContainer& data, int32_t id)
{
	return std::max(data.GetFloat(id), 0.0);
}

struct SinCos
{
	double sin, cos;
};

// The sine and cosine of step / steps of a full turn. Whole quarter turns
// are exact: there the true value is 0 or 1, and the C libraries of Linux
// and Windows round the remainder of pi differently (cos(pi / 2) is 6.1e-17
// with one and another tiny number with the other), while a primitive must
// give the same points, and mesh files, on both.
SinCos ofTurn(int32_t step, int32_t steps)
{
	if((4 * (int64_t)step) % steps == 0)
	{
		static const SinCos quarters[] = {{0, 1}, {1, 0}, {0, -1}, {-1, 0}};
		return quarters[(4 * (int64_t)step / steps) % 4];
	}
	const double angle = 2 * M_PI * step / steps;
	return {std::sin(angle), std::cos(angle)};
}

// A mesh being built: points, and polygons with the UVs of their corners.
struct Mesh
{
	std::vector<Vector> points;
	std::vector<CPolygon> polygons;
	std::vector<UVWStruct> uvs;

	void add(const CPolygon& polygon, const UVWStruct& uv)
	{
		polygons.push_back(polygon);
		uvs.push_back(uv);
	}
};

// The UV of a corner of a surface of revolution, from its position and its
// place on the surface (u around, v along the profile).
using CornerUV = std::function<Vector(const Vector& position, double u, double v)>;

Vector aroundAndAlong(const Vector&, double u, double v)
{
	return Vector(u, v, 0);
}

// A cap of the given radius facing +y (up 1) or -y (up -1), mapped flat as
// seen from outside with +z up, its square filling the texture.
CornerUV capUV(double radius, double up)
{
	return [radius, up](const Vector& p, double, double) {
		return Vector(0.5 + up * p.x / (2 * radius), 0.5 - p.z / (2 * radius), 0);
	};
}

// A point of a profile that turns about the y axis: its distance from the
// axis (0 keeps it one point on the axis), its height, and the v of its ring.
struct ProfilePoint
{
	double radius, y, v;
};

// The points of the profile turned about the y axis in the given number of
// segments, segment j at the angle 2 pi j / segments from +z towards -x: a
// ring for each profile point, one point for a point on the axis. Gives the
// index of each profile point's first point.
std::vector<int32_t> addRings(Mesh& mesh, const std::vector<ProfilePoint>& profile, int32_t segments)
{
	std::vector<int32_t> first;
	for(const ProfilePoint& pp : profile)
	{
		first.push_back((int32_t)mesh.points.size());
		const int32_t count = pp.radius == 0 ? 1 : segments;
		for(int32_t j = 0; j < count; ++j)
		{
			const SinCos turn = ofTurn(j, segments);
			mesh.points.push_back(Vector(-pp.radius * turn.sin, pp.y, pp.radius * turn.cos));
		}
	}
	return first;
}

// Adds the surface that the profile sweeps about the y axis. Seen from the
// side the polygons face, a profile that runs downwards outside the axis or
// outwards on a top face goes clockwise, so such surfaces face out. Between
// a ring and a point on the axis the polygons are triangles, whose corner on
// the axis takes the u of the segment's middle.
void addRevolution(Mesh& mesh, const std::vector<ProfilePoint>& profile, int32_t segments, const CornerUV& uvOf)
{
	const std::vector<int32_t> first = addRings(mesh, profile, segments);
	for(size_t k = 0; k + 1 < profile.size(); ++k)
	{
		if(profile[k].radius == 0 && profile[k + 1].radius == 0)
			continue;
		for(int32_t j = 0; j < segments; ++j)
		{
			// The corners by profile point and segment boundary; the two
			// corners at a point on the axis are one.
			const std::pair<size_t, int32_t> corners[] = {{k, j}, {k, j + 1}, {k + 1, j + 1}, {k + 1, j}};
			std::vector<int32_t> index;
			std::vector<Vector> uv;
			for(const auto& [row, column] : corners)
			{
				const bool onAxis = profile[row].radius == 0;
				const int32_t point = first[row] + (onAxis ? 0 : column % segments);
				if(!index.empty() && index.back() == point)
					continue;
				index.push_back(point);
				uv.push_back(uvOf(mesh.points[point], (onAxis ? j + 0.5 : column) / segments, profile[row].v));
			}
			if(index.size() == 3)
				mesh.add(CPolygon(index[0], index[1], index[2]), {uv[0], uv[1], uv[2], uv[2]});
			else
				mesh.add(CPolygon(index[0], index[1], index[2], index[3]), {uv[0], uv[1], uv[2], uv[3]});
		}
	}
}

Mesh sphere(const BaseContainer& data)
{
	const double radius = lengthOf(data, PRIM_SPHERE_RAD);
	const int32_t segments = segmentsOf(data, PRIM_SPHERE_SUB, 3);
	const int32_t rows = std::max(segments / 2, 2);
	const bool hemisphere = data.GetInt32(PRIM_SPHERE_TYPE) == PRIM_SPHERE_TYPE_HEMISPHERE;
	// The hemisphere ends at the equator with half the rows over a quarter
	// turn, and stays open there; the sphere's rows span half a turn.
	const int32_t bands = hemisphere ? std::max(rows / 2, 1) : rows;
	const int32_t bands_per_turn = (hemisphere ? 4 : 2) * bands;
	std::vector<ProfilePoint> profile;
	for(int32_t i = 0; i <= bands; ++i)
	{
		const SinCos turn = ofTurn(i, bands_per_turn);
		const bool pole = i == 0 || (i == bands && !hemisphere);
		profile.push_back({pole ? 0.0 : radius * turn.sin, radius * turn.cos, (double)i / bands});
	}
	Mesh mesh;
	addRevolution(mesh, profile, segments, aroundAndAlong);
	return mesh;
}

Mesh disc(const BaseContainer& data)
{
	const double radius = lengthOf(data, PRIM_DISC_ORAD);
	const int32_t rings = segmentsOf(data, PRIM_DISC_SUB, 1);
	std::vector<ProfilePoint> profile;
	for(int32_t k = 0; k <= rings; ++k)
		profile.push_back({radius * k / rings, 0, (double)k / rings});
	Mesh mesh;
	addRevolution(mesh, profile, segmentsOf(data, PRIM_DISC_CSUB, 3), capUV(radius, 1));
	return mesh;
}

// The caps have points of their own, so that the side's normals and UVs do
// not run into them.
Mesh cylinder(const BaseContainer& data)
{
	const double radius = lengthOf(data, PRIM_CYLINDER_RADIUS);
	const double half = lengthOf(data, PRIM_CYLINDER_HEIGHT) / 2;
	const int32_t segments = segmentsOf(data, PRIM_CYLINDER_SEG, 3);
	Mesh mesh;
	addRevolution(mesh, {{0, half, 0}, {radius, half, 1}}, segments, capUV(radius, 1));
	addRevolution(mesh, {{radius, half, 0}, {radius, -half, 1}}, segments, aroundAndAlong);
	addRevolution(mesh, {{radius, -half, 0}, {0, -half, 1}}, segments, capUV(radius, -1));
	return mesh;
}

// The plane lies in y = 0 facing +y: width along x, height along z, the
// texture's top at +z.
Mesh plane(const BaseContainer& data)
{
	const double width = lengthOf(data, PRIM_PLANE_WIDTH);
	const double height = lengthOf(data, PRIM_PLANE_HEIGHT);
	const int32_t subw = segmentsOf(data, PRIM_PLANE_SUBW, 1);
	const int32_t subh = segmentsOf(data, PRIM_PLANE_SUBH, 1);
	Mesh mesh;
	for(int32_t j = 0; j <= subh; ++j)
	{
		for(int32_t i = 0; i <= subw; ++i)
			mesh.points.push_back(Vector(width * ((double)i / subw - 0.5), 0, height * (0.5 - (double)j / subh)));
	}
	const auto at = [subw](int32_t i, int32_t j) { return j * (subw + 1) + i; };
	const auto uv = [subw, subh](int32_t i, int32_t j) { return Vector((double)i / subw, (double)j / subh, 0); };
	for(int32_t j = 0; j < subh; ++j)
	{
		for(int32_t i = 0; i < subw; ++i)
		{
			mesh.add(CPolygon(at(i, j + 1), at(i, j), at(i + 1, j), at(i + 1, j + 1)),
				{uv(i, j + 1), uv(i, j), uv(i + 1, j), uv(i + 1, j + 1)});
		}
	}
	return mesh;
}

// Eight corners, point k at +x when bit 0 is set, +y for bit 1, +z for bit 2.
// Each side is one quad seen from outside with the texture upright: the
// sides with +y up, top and bottom with +z up.
Mesh cube(const BaseContainer& data)
{
	const Vector size = data.GetVector(PRIM_CUBE_LEN);
	const Vector half(std::max(size.x, 0.0) / 2, std::max(size.y, 0.0) / 2, std::max(size.z, 0.0) / 2);
	Mesh mesh;
	for(int32_t k = 0; k < 8; ++k)
		mesh.points.push_back(Vector(k & 1 ? half.x : -half.x, k & 2 ? half.y : -half.y, k & 4 ? half.z : -half.z));
	const auto corner = [](const Vector& d) { return (d.x > 0 ? 1 : 0) | (d.y > 0 ? 2 : 0) | (d.z > 0 ? 4 : 0); };
	const struct
	{
		Vector facing, up;
	} sides[] = {
		{{0, 0, -1}, {0, 1, 0}},
		{{1, 0, 0}, {0, 1, 0}},
		{{0, 0, 1}, {0, 1, 0}},
		{{-1, 0, 0}, {0, 1, 0}},
		{{0, 1, 0}, {0, 0, 1}},
		{{0, -1, 0}, {0, 0, 1}},
	};
	for(const auto& side : sides)
	{
		const Vector right = Cross(side.facing, side.up);
		const Vector f = side.facing, u = side.up;
		mesh.add(CPolygon(corner(f - right - u), corner(f - right + u), corner(f + right + u), corner(f + right - u)),
			{Vector(0, 1, 0), Vector(0, 0, 0), Vector(1, 0, 0), Vector(1, 1, 0)});
	}
	return mesh;
}

// The rotation that turns +y to the direction of PRIM_AXIS.
Matrix axisRotation(int32_t axis)
{
	switch(axis)
	{
	case PRIM_AXIS_XP:
		return Matrix(Vector(), Vector(0, -1, 0), Vector(1, 0, 0), Vector(0, 0, 1));
	case PRIM_AXIS_XN:
		return Matrix(Vector(), Vector(0, 1, 0), Vector(-1, 0, 0), Vector(0, 0, 1));
	case PRIM_AXIS_YN:
		return Matrix(Vector(), Vector(1, 0, 0), Vector(0, -1, 0), Vector(0, 0, -1));
	case PRIM_AXIS_ZP:
		return Matrix(Vector(), Vector(1, 0, 0), Vector(0, 0, 1), Vector(0, -1, 0));
	case PRIM_AXIS_ZN:
		return Matrix(Vector(), Vector(1, 0, 0), Vector(0, 0, -1), Vector(0, 1, 0));
	default:
		return Matrix();
	}
}

Mesh oriented(Mesh mesh, const BaseContainer& data)
{
	const Matrix turn = axisRotation(data.GetInt32(PRIM_AXIS));
	for(Vector& p : mesh.points)
		p = turn * p;
	return mesh;
}

// The cache object of the mesh, with the tags the host gives every cache
// of a primitive.
PolygonObject* toObject(const Mesh& mesh, const String& name)
{
	PolygonObject* op = PolygonObject::Alloc((int32_t)mesh.points.size(), (int32_t)mesh.polygons.size());
	UVWTag* uvw = UVWTag::Alloc((int32_t)mesh.uvs.size());
	BaseTag* phong = BaseTag::Alloc(Tphong);
	if(!op || !uvw || !phong)
	{
		PolygonObject::Free(op);
		UVWTag::Free(uvw);
		BaseTag::Free(phong);
		return nullptr;
	}
	op->SetName(name);
	std::copy(mesh.points.begin(), mesh.points.end(), op->GetPointW());
	std::copy(mesh.polygons.begin(), mesh.polygons.end(), op->GetPolygonW());
	for(int32_t i = 0; i < (int32_t)mesh.uvs.size(); ++i)
		uvw->Set(i, mesh.uvs[i]);
	op->InsertTag(phong);
	op->InsertTag(uvw, phong);
	return op;
}

// A free copy of the geometry of source, named and placed as op, with
// copies of op's tags and of the tags of source whose types op has none of.
PolygonObject* copyAs(const PolygonObject& source, const BaseObject& op)
{
	PolygonObject* copy = PolygonObject::Alloc(source.GetPointCount(), source.GetPolygonCount());
	if(!copy)
		return nullptr;
	std::copy(source.GetPointR(), source.GetPointR() + source.GetPointCount(), copy->GetPointW());
	std::copy(source.GetPolygonR(), source.GetPolygonR() + source.GetPolygonCount(), copy->GetPolygonW());
	copy->SetName(op.GetName());
	copy->SetMl(op.GetMl());
	BaseTag* last = nullptr;
	const auto append = [&](const BaseTag* tag) {
		if(BaseTag* clone = tag->GetClone())
		{
			copy->InsertTag(clone, last);
			last = clone;
		}
	};
	for(const BaseTag* tag = op.GetFirstTag(); tag; tag = tag->GetNext())
		append(tag);
	if(&source != &op)
	{
		for(const BaseTag* tag = source.GetFirstTag(); tag; tag = tag->GetNext())
		{
			if(!op.GetTag(tag->GetType()))
				append(tag);
		}
	}
	return copy;
}

} // namespace

void SetSphereDefaults(BaseContainer& data)
{
	data.SetFloat(PRIM_SPHERE_RAD, 100.0);
	data.SetInt32(PRIM_SPHERE_SUB, 24);
	data.SetInt32(PRIM_SPHERE_TYPE, PRIM_SPHERE_TYPE_STANDARD);
	data.SetBool(PRIM_SPHERE_PERFECT, true);
}

void SetCubeDefaults(BaseContainer& data)
{
	data.SetVector(PRIM_CUBE_LEN, Vector(200, 200, 200));
}

void SetPlaneDefaults(BaseContainer& data)
{
	data.SetFloat(PRIM_PLANE_WIDTH, 400.0);
	data.SetFloat(PRIM_PLANE_HEIGHT, 400.0);
	data.SetInt32(PRIM_PLANE_SUBW, 20);
	data.SetInt32(PRIM_PLANE_SUBH, 20);
	data.SetInt32(PRIM_AXIS, PRIM_AXIS_YP);
}

void SetDiscDefaults(BaseContainer& data)
{
	data.SetFloat(PRIM_DISC_ORAD, 100.0);
	data.SetInt32(PRIM_DISC_SUB, 1);
	data.SetInt32(PRIM_DISC_CSUB, 36);
	data.SetInt32(PRIM_AXIS, PRIM_AXIS_YP);
}

void SetCylinderDefaults(BaseContainer& data)
{
	data.SetFloat(PRIM_CYLINDER_RADIUS, 50.0);
	data.SetFloat(PRIM_CYLINDER_HEIGHT, 200.0);
	data.SetInt32(PRIM_CYLINDER_SEG, 36);
	data.SetInt32(PRIM_AXIS, PRIM_AXIS_YP);
}

bool IsPrimitiveType(int32_t type)
{
	return type == Osphere || type == Ocube || type == Oplane || type == Odisc || type == Ocylinder;
}

PolygonObject* BuildPrimitive(const BaseObject& generator)
{
	const BaseContainer& data = *generator.GetDataInstance();
	switch(generator.GetType())
	{
	case Osphere:
		return toObject(sphere(data), generator.GetName());
	case Ocube:
		return toObject(cube(data), generator.GetName());
	case Oplane:
		return toObject(oriented(plane(data), data), generator.GetName());
	case Odisc:
		return toObject(oriented(disc(data), data), generator.GetName());
	case Ocylinder:
		return toObject(oriented(cylinder(data), data), generator.GetName());
	default:
		return nullptr;
	}
}

PolygonObject* CurrentStateToObject(const BaseObject& op)
{
	for(const BaseObject* cache : {op.GetDeformCache(), op.GetCache()})
	{
		if(const PolygonObject* source = dynamic_cast<const PolygonObject*>(cache))
			return copyAs(*source, op);
	}
	if(const PolygonObject* source = dynamic_cast<const PolygonObject*>(&op))
		return copyAs(*source, op);
	if(op.GetCache() || !IsPrimitiveType(op.GetType()))
		return nullptr;
	std::unique_ptr<PolygonObject, void (*)(PolygonObject*)> built(
		BuildPrimitive(op), [](PolygonObject* p) { PolygonObject::Free(p); });
	return built ? copyAs(*built, op) : nullptr;
}
