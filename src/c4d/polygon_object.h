#pragma once

#include "c4d/base_object.h"

#include <vector>

// A polygon by the indices of its corner points; a triangle has d == c.
struct CPolygon
{
	int32_t a = 0, b = 0, c = 0, d = 0;

	CPolygon() = default;
	CPolygon(int32_t a_, int32_t b_, int32_t c_) : a(a_), b(b_), c(c_), d(c_) {}
	CPolygon(int32_t a_, int32_t b_, int32_t c_, int32_t d_) : a(a_), b(b_), c(c_), d(d_) {}

	bool IsTriangle() const { return c == d; }
	// Whether every corner is one of pointCount points.
	bool IsWithin(int32_t pointCount) const;
	bool operator==(const CPolygon& o) const { return a == o.a && b == o.b && c == o.c && d == o.d; }
	bool operator!=(const CPolygon& o) const { return !(*this == o); }
};

// The normal of polygon v over the points padr, of length 1: the cross product
// of its diagonals (c - a) x (d - b), which for a triangle is the cross product
// of two of its edges. Polygons whose corners run clockwise seen from a side
// face that side. Zero for a degenerate polygon.
Vector CalcFaceNormal(const Vector* padr, const CPolygon& v);

// An object of type Opolygon: points in object space and polygons over them.
class PolygonObject : public BaseObject
{
public:
	PolygonObject() : BaseObject(Opolygon) {}

	// A free polygon object with pcnt points at the origin and vcnt polygons
	// of indices 0; null for a negative count.
	static PolygonObject* Alloc(int32_t pcnt, int32_t vcnt);

	// As BaseObject::GetClone, with the points and polygons.
	PolygonObject* GetClone() const override;

	int32_t GetPointCount() const { return (int32_t)points.size(); }
	int32_t GetPolygonCount() const { return (int32_t)polygons.size(); }
	const Vector* GetPointR() const { return points.data(); }
	Vector* GetPointW() { return points.data(); }
	const CPolygon* GetPolygonR() const { return polygons.data(); }
	CPolygon* GetPolygonW() { return polygons.data(); }

	// Sets the counts, keeping the leading points and polygons; new ones are
	// zero. False, changing nothing, for a negative count.
	bool ResizeObject(int32_t pcnt, int32_t vcnt);

	// The normals of the polygons' corners as the object's Phong tag smooths
	// them: four per polygon (a, b, c, d; d repeats c for a triangle). A
	// corner's normal is the normalised sum of the face normals of the
	// polygons at its point whose angle to this polygon's normal is within
	// the tag's angle (of all of them without the angle limit). Each is of
	// length 1, or zero for a degenerate polygon, for one whose corners are
	// no points of the object, and where the normals summed cancel. Broken
	// edges are not kept: the host has none. Empty without a Phong tag.
	std::vector<Vector> CreatePhongNormals() const;

private:
	std::vector<Vector> points;
	std::vector<CPolygon> polygons;
};
