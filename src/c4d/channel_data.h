#pragma once

#include "c4d/vector_matrix.h"

#include <cstdint>

class BaseDocument;

// What the host's renderer knows of the surface point that a shader or a
// material is sampled at, when a render (rather than a preview or a bake)
// samples it, and what a material's CalcSurface and CalcTransparency answer.
// The services (light, tracing) are the renderer's: the headless host has
// no renderer of its own, so its defaults see no light and trace black, and
// a render (or a test) that has them overrides them.
struct VolumeData
{
	virtual ~VolumeData() = default;

	// The surface point in world coordinates, in host units.
	Vector p;
	// The shading normal, bump included, unit length.
	Vector bumpn;
	// The direction of the ray that hit the point, unit length.
	Vector ray_dir;
	// The texture coordinates of the point.
	Vector uvw;
	// How many reflections deep the ray is; 0 for a camera ray.
	int32_t raydepth = 0;
	// The refraction index of the medium the ray travels in.
	double ior = 1.0;

	// Answers: the surface's colour, its transparency, and the direction in
	// which light passes through it (the ray's own when unchanged).
	Vector col;
	Vector trans;
	Vector tray_dir;

	// The light the scene's lamps cast on the point, diffuse and specular.
	virtual void IlluminanceSimple(Vector* diffuse, Vector* specular, double exponent);
	// The colour seen along a ray from the point, up to maxdist.
	virtual Vector TraceColor(const Vector& dir, double maxdist);
};

// One sample request of a shader: the texture coordinates and, when a
// render asks, the surface point behind them.
struct ChannelData
{
	// (u, v, w): u and v over the texture's square, w for volumetric use.
	Vector p;
	// The normal and the view direction that stand in when there is no
	// VolumeData (material previews, bakes).
	Vector n;
	Vector d;
	// The render's point; null when none.
	VolumeData* vd = nullptr;
};

// What InitRender hands a shader before the first sample of a render.
struct InitRenderStruct
{
	InitRenderStruct() = default;
	explicit InitRenderStruct(BaseDocument* doc_) : doc(doc_) {}

	// The document that is rendered; null when the caller has none.
	BaseDocument* doc = nullptr;
};

// Results of InitRender; anything but INITRENDERRESULT_OK stops the render.
using INITRENDERRESULT = int32_t;
enum
{
	INITRENDERRESULT_OK = 0,
	INITRENDERRESULT_OUTOFMEMORY = -100,
	INITRENDERRESULT_ASSETMISSING = -101,
	INITRENDERRESULT_UNKNOWNERROR = -102,
};
