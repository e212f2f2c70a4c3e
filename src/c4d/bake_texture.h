#pragma once

#include "c4d/base_container.h"

class BaseBitmap;
class BaseDocument;
class BaseThread;
class TextureTag;
class UVWTag;

// The parameters of the host's baking service, in its settings container.
enum
{
	BAKE_TEX_USE_CAMERA_VECTOR = 1006,
	BAKE_TEX_NORMAL = 1009,
	BAKE_TEX_SURFACECOLOR = 1011,
	// Bake the colour channel of the tag's material.
	BAKE_TEX_COLOR = 1012,
	BAKE_TEX_WIDTH = 1020,
	BAKE_TEX_HEIGHT = 1021,
	// Pixels around each baked area that take the colour of its nearest
	// baked pixel, so that filtering at seams reads no background.
	BAKE_TEX_PIXELBORDER = 1022,
	BAKE_TEX_FILL_COLOR = 1024,
	BAKE_TEX_COLOR_ILLUM = 1025,
	BAKE_TEX_COLOR_SHADOWS = 1026,
	BAKE_TEX_COLOR_LUMINANCE = 1027,
	// Each pixel is the mean of (2^n)^2 samples spread over it; 0 takes
	// one sample at the pixel's centre.
	BAKE_TEX_SUPERSAMPLING = 1030,
	BAKE_TEX_UV_LEFT = 1032,
};

// What the service reports.
enum BAKE_TEX_ERR
{
	BAKE_TEX_ERR_NONE = 0,
	BAKE_TEX_ERR_NO_DOC = 3000,
	BAKE_TEX_ERR_NO_MEM,
	BAKE_TEX_ERR_NO_RENDER_DOC,
	BAKE_TEX_ERR_NO_TEXTURE_TAG,
	BAKE_TEX_ERR_NO_OBJECT,
	BAKE_TEX_ERR_NO_UVW_TAG,
	BAKE_TEX_ERR_TEXTURE_MISSING,
	BAKE_TEX_ERR_WRONG_BITMAP,
	BAKE_TEX_ERR_USERBREAK,
	BAKE_TEX_ERR_NO_OPTIMAL_MAPPING,
	BAKE_TEX_ERR_NO_SOURCE_UVW_TAG,
};

// The host's baking service. InitBakeTexture prepares a bake of the colour
// channel of the texture tag's material over the polygons of the tag's
// object, laid out by the UVW tag: it answers a document of its own that
// holds copies of what the bake needs (the caller frees it), or null with
// err set. destUvw, when given, lays the picture out instead of uvw (the
// application bakes from one UV set into another); the headless host
// accepts only null there or the same tag.
BaseDocument* InitBakeTexture(BaseDocument* doc, TextureTag* textag, UVWTag* uvw, UVWTag* destUvw,
	const BaseContainer& settings, BAKE_TEX_ERR* err = nullptr, BaseThread* thread = nullptr);

// Progress of a bake, handed to the hook now and then.
struct BakeProgressInfo
{
	// From 0 to 1.
	double progress = 0.0;
};
using BakeProgressHook = void (*)(BakeProgressInfo* info);

// Fills bmp (already of the settings' width and height) with the bake that
// InitBakeTexture prepared: every pixel whose centre lies in a polygon's UV
// area takes the channel's colour at that point, super sampled as the
// settings say; the pixel border grows the baked areas; pixels outside stay
// as they were. BAKE_TEX_ERR_USERBREAK when the thread asks to stop.
BAKE_TEX_ERR BakeTexture(BaseDocument* bakeDoc, const BaseContainer& settings, BaseBitmap* bmp,
	BaseThread* thread, BakeProgressHook hook = nullptr, BakeProgressInfo* info = nullptr);
