#pragma once

#include "c4d/base_tag.h"
#include "c4d/vector_matrix.h"

class BaseMaterial;

// The parameters of a texture tag (Ttexture).
enum
{
	// Reals: the texture's offset and length in u and v (the length 1 being
	// the whole surface).
	TEXTURETAG_OFFSETX = 1000,
	TEXTURETAG_OFFSETY = 1001,
	TEXTURETAG_LENGTHX = 1002,
	TEXTURETAG_LENGTHY = 1003,
	// Long: one of the projections below.
	TEXTURETAG_PROJECTION = 1004,
	// String: the name of the polygon selection the tag is restricted to;
	// empty for the whole object.
	TEXTURETAG_RESTRICTION = 1006,
	// Link: the material.
	TEXTURETAG_MATERIAL = 1010,
};

// How a texture tag maps its material onto the object.
enum
{
	TEXTURETAG_PROJECTION_SPHERICAL = 0,
	TEXTURETAG_PROJECTION_CYLINDRICAL = 1,
	TEXTURETAG_PROJECTION_FLAT = 2,
	TEXTURETAG_PROJECTION_CUBIC = 3,
	TEXTURETAG_PROJECTION_FRONTAL = 4,
	TEXTURETAG_PROJECTION_SPATIAL = 5,
	TEXTURETAG_PROJECTION_UVW = 6,
};

// Sets the parameters a new texture tag has in the host: offset 0, length 1,
// UVW projection, no restriction.
void SetTextureTagDefaults(BaseContainer& data);

// A tag of type Ttexture: a material on the object (or on one of its
// polygon selections) with a projection placed by the tag's own matrix.
class TextureTag : public BaseTag
{
public:
	TextureTag() : BaseTag(Ttexture) {}
	// A free texture tag with the host's defaults (offset 0, length 1, UVW
	// projection, no restriction, no material, identity matrix).
	static TextureTag* Alloc();

	// The material the tag links (TEXTURETAG_MATERIAL); null for none or a
	// link to something that is not a material.
	BaseMaterial* GetMaterial() const;
	void SetMaterial(BaseMaterial* mat);

	// The projection's placement relative to the tag's object: the axes'
	// lengths are the projection's size.
	const Matrix& GetMl() const { return ml; }
	void SetMl(const Matrix& m) { ml = m; }
	// The projection's placement in world space: the object's world matrix
	// times the tag's own; the tag's own matrix for a free tag.
	Matrix GetMg() const;

	// A free tag of the same name, parameters and matrix.
	TextureTag* GetClone() const override;

private:
	Matrix ml;
};
