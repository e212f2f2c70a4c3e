#include "c4d/polygon_object.h"

#include "c4d/plugin_registry.h"
#include "c4d/variable_tags.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace
{

// The corners of p as an array, a to d.
std::array<int32_t, 4> cornersOf(const CPolygon& p)
{
	return {p.a, p.b, p.c, p.d};
}

// For each point, the polygons that use it, each once: the polygons of
// point i are polygon[first[i]] to polygon[first[i + 1] - 1]. Built in two
// counting passes, so it costs time and memory in proportion to the corners.
class PointPolygons
{
public:
	PointPolygons(const std::vector<CPolygon>& polygons, int32_t pointCount) : first(pointCount + 1, 0)
	{
		forEachUse(polygons, pointCount, [&](int32_t point, int32_t) { ++first[point + 1]; });
		for(int32_t i = 0; i < pointCount; ++i)
			first[i + 1] += first[i];
		polygon.resize(first[pointCount]);
		std::vector<int32_t> filled(first.begin(), first.end() - 1);
		forEachUse(polygons, pointCount, [&](int32_t point, int32_t poly) { polygon[filled[point]++] = poly; });
	}

	const int32_t* begin(int32_t point) const { return polygon.data() + first[point]; }
	const int32_t* end(int32_t point) const { return polygon.data() + first[point + 1]; }

private:
	// Calls use(point, polygon) once for each distinct point of each polygon
	// whose corners are all points of the object.
	template<typename Use>
	static void forEachUse(const std::vector<CPolygon>& polygons, int32_t pointCount, Use use)
	{
		for(int32_t i = 0; i < (int32_t)polygons.size(); ++i)
		{
			if(!polygons[i].IsWithin(pointCount))
				continue;
			const auto corners = cornersOf(polygons[i]);
			for(int32_t k = 0; k < 4; ++k)
			{
				if(std::find(corners.begin(), corners.begin() + k, corners[k]) == corners.begin() + k)
					use(corners[k], i);
			}
		}
	}

	std::vector<int32_t> first;
	std::vector<int32_t> polygon;
};

} // namespace

bool CPolygon::IsWithin(int32_t pointCount) const
{
	for(const int32_t i : cornersOf(*this))
		if(i < 0 || i >= pointCount)
			return false;
	return true;
}

Vector CalcFaceNormal(const Vector* padr, const CPolygon& v)
{
	return Cross(padr[v.c] - padr[v.a], padr[v.d] - padr[v.b]).GetNormalized();
}

PolygonObject* PolygonObject::Alloc(int32_t pcnt, int32_t vcnt)
{
	if(pcnt < 0 || vcnt < 0)
		return nullptr;
	PolygonObject* op = InitOrFree(new PolygonObject(), NodeClass::Object);
	if(op)
		op->ResizeObject(pcnt, vcnt);
	return op;
}

PolygonObject* PolygonObject::GetClone() const
{
	PolygonObject* copy = static_cast<PolygonObject*>(BaseObject::GetClone());
	if(copy)
	{
		copy->points = points;
		copy->polygons = polygons;
	}
	return copy;
}

bool PolygonObject::ResizeObject(int32_t pcnt, int32_t vcnt)
{
	if(pcnt < 0 || vcnt < 0)
		return false;
	points.resize(pcnt);
	polygons.resize(vcnt);
	return true;
}

std::vector<Vector> PolygonObject::CreatePhongNormals() const
{
	const BaseTag* phong = GetTag(Tphong);
	if(!phong)
		return {};
	const BaseContainer* data = phong->GetDataInstance();
	// An angle equal to the limit still counts as within it, whatever the
	// rounding of the cosines.
	const double minCos = data->GetBool(PHONGTAG_PHONG_ANGLELIMIT)
		? std::cos(data->GetFloat(PHONGTAG_PHONG_ANGLE)) - 1e-9
		: -std::numeric_limits<double>::infinity();

	const int32_t pointCount = GetPointCount();
	const int32_t polygonCount = GetPolygonCount();
	std::vector<Vector> faces(polygonCount);
	for(int32_t i = 0; i < polygonCount; ++i)
	{
		if(polygons[i].IsWithin(pointCount))
			faces[i] = CalcFaceNormal(points.data(), polygons[i]);
	}
	const PointPolygons around(polygons, pointCount);

	std::vector<Vector> normals(4 * (size_t)polygonCount);
	for(int32_t i = 0; i < polygonCount; ++i)
	{
		const Vector& own = faces[i];
		if(own == Vector())
			continue;
		const auto corners = cornersOf(polygons[i]);
		const int32_t count = polygons[i].IsTriangle() ? 3 : 4;
		for(int32_t k = 0; k < count; ++k)
		{
			Vector sum;
			for(const int32_t* other = around.begin(corners[k]); other != around.end(corners[k]); ++other)
			{
				if(Dot(faces[*other], own) >= minCos)
					sum += faces[*other];
			}
			normals[4 * (size_t)i + k] = sum.GetNormalized();
		}
		if(count == 3)
			normals[4 * (size_t)i + 3] = normals[4 * (size_t)i + 2];
	}
	return normals;
}
