#pragma once

#include "c4d/vector_matrix.h"

#include <cstdint>

class BaseDocument;

// What the host's renderer knows of the surface point that a shader is
// sampled at, when a render (rather than a preview or a bake) samples it.
struct VolumeData
{
	// The surface point in world coordinates, in host units.
	Vector p;
	// The shading normal, bump included, unit length.
	Vector bumpn;
	// The direction of the ray that hit the point, unit length.
	Vector ray_dir;
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
