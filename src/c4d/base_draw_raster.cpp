// The picture of a view's recorded calls: lines one pixel wide, polygons as
// their edges, in the pen colour of each call.

#include "c4d/base_bitmap.h"
#include "c4d/base_draw.h"
#include "c4d/polygon_object.h"

#include <algorithm>
#include <cmath>

namespace
{

// The pixel colour of a colour with components from 0 to 1.
struct Rgb
{
	int32_t r, g, b;
};

Rgb toRgb(const Vector& c)
{
	auto channel = [](double v) { return (int32_t)std::lround(std::clamp(v, 0.0, 1.0) * 255.0); };
	return {channel(c.x), channel(c.y), channel(c.z)};
}

// Cuts the segment to the rectangle [0, w) x [0, h) with a margin (Liang and
// Barsky), so that a line far beyond the view costs no time; false when
// nothing of it is left.
bool clipToView(double& x0, double& y0, double& x1, double& y1, int32_t w, int32_t h)
{
	const double lo_x = -1, lo_y = -1, hi_x = w, hi_y = h;
	double t0 = 0, t1 = 1;
	const double dx = x1 - x0, dy = y1 - y0;
	const double p[4] = {-dx, dx, -dy, dy};
	const double q[4] = {x0 - lo_x, hi_x - x0, y0 - lo_y, hi_y - y0};
	for(int i = 0; i < 4; ++i)
	{
		if(p[i] == 0)
		{
			if(q[i] < 0)
				return false;
			continue;
		}
		const double t = q[i] / p[i];
		if(p[i] < 0)
			t0 = std::max(t0, t);
		else
			t1 = std::min(t1, t);
		if(t0 > t1)
			return false;
	}
	const double sx = x0, sy = y0;
	x0 = sx + t0 * dx;
	y0 = sy + t0 * dy;
	x1 = sx + t1 * dx;
	y1 = sy + t1 * dy;
	return true;
}

// A line between pixel centres, by Bresenham's steps.
void plotLine(BaseBitmap& bmp, double fx0, double fy0, double fx1, double fy1, const Rgb& c)
{
	if(!clipToView(fx0, fy0, fx1, fy1, bmp.GetBw(), bmp.GetBh()))
		return;
	int32_t x0 = (int32_t)std::lround(fx0), y0 = (int32_t)std::lround(fy0);
	const int32_t x1 = (int32_t)std::lround(fx1), y1 = (int32_t)std::lround(fy1);
	const int32_t dx = std::abs(x1 - x0), sx = x0 < x1 ? 1 : -1;
	const int32_t dy = -std::abs(y1 - y0), sy = y0 < y1 ? 1 : -1;
	int32_t err = dx + dy;
	for(;;)
	{
		bmp.SetPixel(x0, y0, c.r, c.g, c.b);
		if(x0 == x1 && y0 == y1)
			break;
		const int32_t e2 = 2 * err;
		if(e2 >= dy)
		{
			err += dy;
			x0 += sx;
		}
		if(e2 <= dx)
		{
			err += dx;
			y0 += sy;
		}
	}
}

// The camera's near limit in host units: what lies closer is cut away.
const double kNear = 0.01;

} // namespace

bool BaseDraw::rasterise(BaseBitmap& bmp) const
{
	if(bmp.Init(width, height, 24) != IMAGERESULT_OK)
		return false;
	bmp.Clear(60, 60, 60);
	const BaseObject* camera = GetSceneCamera(doc);
	if(!camera)
		camera = editorCamera.get();
	const Matrix to_camera = Invert(camera->GetMg());

	// A line between two world points, cut at the camera's near limit.
	auto line3d = [&](const Vector& a, const Vector& b, const Rgb& c) {
		Vector ca = to_camera * a, cb = to_camera * b;
		if(ca.z < kNear && cb.z < kNear)
			return;
		if(ca.z < kNear || cb.z < kNear)
		{
			const double t = (kNear - ca.z) / (cb.z - ca.z);
			const Vector cut = ca + (cb - ca) * t;
			(ca.z < kNear ? ca : cb) = cut;
		}
		const Matrix from_camera = camera->GetMg();
		double x0, y0, x1, y1;
		if(project(from_camera * ca, x0, y0) && project(from_camera * cb, x1, y1))
			plotLine(bmp, x0, y0, x1, y1, c);
	};

	for(const DrawCall& call : record)
	{
		const Rgb c = toRgb(call.color);
		switch(call.kind)
		{
		case DrawCall::Kind::Line2D:
			plotLine(bmp, call.points[0].x, call.points[0].y, call.points[1].x, call.points[1].y, c);
			break;
		case DrawCall::Kind::Line3D:
			line3d(call.matrix * call.points[0], call.matrix * call.points[1], c);
			break;
		case DrawCall::Kind::Polygon:
		{
			const Rgb edge = call.colors.empty() ? c : toRgb(call.colors[0]);
			const size_t n = call.points.size();
			for(size_t i = 0; i < n; ++i)
				line3d(call.matrix * call.points[i], call.matrix * call.points[(i + 1) % n], edge);
			break;
		}
		case DrawCall::Kind::PolygonObject:
		{
			const PolygonObject* poly = static_cast<const PolygonObject*>(call.object);
			const Vector* points = poly->GetPointR();
			const CPolygon* polygons = poly->GetPolygonR();
			for(int32_t i = 0; i < poly->GetPolygonCount(); ++i)
			{
				const CPolygon& p = polygons[i];
				const int32_t corners[4] = {p.a, p.b, p.c, p.d};
				const int32_t count = p.c == p.d ? 3 : 4;
				for(int32_t k = 0; k < count; ++k)
					line3d(call.matrix * points[corners[k]], call.matrix * points[corners[(k + 1) % count]], c);
			}
			break;
		}
		default:
			break;
		}
	}
	return true;
}
