#pragma once

#include "c4d/c4d_string.h"
#include "c4d/polygon_object.h"
#include "c4d/variable_tags.h"

#include <cmath>
#include <cstdint>

// A grid of cells_u x cells_v quads, 0.1 apart from corner, lifted by the
// wave 0.2 sin(i fu + 0.37 k) cos(j fv + 0.19 k): k picks the wave, so that
// no two grids are alike. Its UVW tag's UVs follow the points, so merging
// leaves one UV pair per point. The benchmarks add their own tags.
inline PolygonObject* makeWavedGrid(
	int32_t k, int32_t cells_u, int32_t cells_v, double fu, double fv, const Vector& corner, const String& name)
{
	const int32_t columns = cells_u + 1;
	PolygonObject* op = PolygonObject::Alloc(columns * (cells_v + 1), cells_u * cells_v);
	op->SetName(name);
	Vector* points = op->GetPointW();
	for(int32_t j = 0; j <= cells_v; ++j)
		for(int32_t i = 0; i < columns; ++i)
		{
			const double height = 0.2 * std::sin(i * fu + k * 0.37) * std::cos(j * fv + k * 0.19);
			points[j * columns + i] = corner + Vector(i * 0.1, height, j * 0.1);
		}
	UVWTag* uvw = UVWTag::Alloc(cells_u * cells_v);
	CPolygon* polygons = op->GetPolygonW();
	const auto uv = [&](int32_t i, int32_t j) { return Vector((double)i / cells_u, (double)j / cells_v, 0); };
	for(int32_t j = 0; j < cells_v; ++j)
		for(int32_t i = 0; i < cells_u; ++i)
		{
			const int32_t a = j * columns + i;
			polygons[j * cells_u + i] = CPolygon(a, a + 1, a + columns + 1, a + columns);
			uvw->Set(j * cells_u + i, UVWStruct{uv(i, j), uv(i + 1, j), uv(i + 1, j + 1), uv(i, j + 1)});
		}
	op->InsertTag(uvw);
	return op;
}
