#pragma once

#include "c4d/vector_matrix.h"

class BaseObject;
class TextureTag;
class UVWTag;

// The UVs that the texture tag's projection gives the polygon object op,
// whose world matrix is opmg, with the projection placed at texopmg (the
// tag's world matrix, whose axes' lengths are the projection's size): one
// record per polygon. Frontal mapping looks through the active camera of the
// document op is in, and is flat mapping without one. A free tag the caller
// owns; null when op is no polygon object or has no polygons, when tag is
// null or its projection unknown, when the projection's placement (texopmg,
// or the camera's for frontal mapping) has no inverse, or when the
// projection is UVW mapping and op has no UVW tag (with one, a copy of it
// with one record per polygon). A polygon whose corners are no points of op
// keeps a record of zeros. docs/host-geometry.md gives the formulas.
UVWTag* GenerateUVW(const BaseObject* op, const Matrix& opmg, const TextureTag* tag, const Matrix& texopmg);
