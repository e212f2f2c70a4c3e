#pragma once

#include "mesh/model_decoder.h"

#include <cstddef>

namespace Velorn
{

// Wavefront OBJ: "v", "vt", "vn", "f" and "usemtl" lines; everything else is
// skipped. Every face corner becomes a vertex of its own. Faces of three
// corners become triangles, of four quads, of more a triangle fan; faces
// before any "usemtl" use the material "default".
class FormatDecoderObj : public ModelDecoder
{
public:
	std::vector<std::string> getExtensions() const override { return {"obj"}; }
	// Maps the file into memory and decodes it as decodeText does.
	void streamModel(const std::string& path, Mesh& mesh, float scale) const override;

	// Decodes OBJ text of size bytes into mesh and finalises it.
	static void decodeText(const char* text, size_t size, Mesh& mesh, float scale);
};

} // namespace Velorn
