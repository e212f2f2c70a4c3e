#pragma once

#include "mesh/model_decoder.h"

#include <cstddef>

namespace Velorn
{

class PlyReader;

// Stanford PLY: the x, y, z of "vertex" and the first three entries of each
// "vertex_indices" list of "face" make a triangle mesh with the one material
// "default". Other properties, and list entries after the third, are left.
class FormatDecoderPLY : public ModelDecoder
{
public:
	std::vector<std::string> getExtensions() const override { return {"ply"}; }
	void streamModel(const std::string& path, Mesh& mesh, float scale) const override;

	// Decodes the PLY file held in memory, as streamModel does a file.
	static void decodeBytes(const char* bytes, size_t size, Mesh& mesh, float scale);

	// Whether the body of the reader's file, its header read, is read in
	// bulk rather than value by value through the reader's callbacks: a
	// binary file of float x, y, z vertices and, if any, faces of one list of
	// uchar length and int or uint entries, and no other elements.
	static bool readsInBulk(const PlyReader& reader);

private:
	// The steps after opening: header, callbacks, body, close, endOfModel.
	static void decode(PlyReader& reader, Mesh& mesh, float scale);
};

} // namespace Velorn
