#pragma once

#include "support/exceptions.h"

#include <string>
#include <vector>

namespace Velorn
{

class Mesh;

// Turns a model file of one format into a mesh. Failures throw
// ModelFormatDecoderExcep and leave the mesh partly filled: callers drop it.
class ModelDecoder
{
public:
	virtual ~ModelDecoder() = default;
	// The file extensions this decoder reads, lower case, without the dot.
	virtual std::vector<std::string> getExtensions() const = 0;
	// Reads the file at path into mesh and finalises it; positions are
	// multiplied by scale where the format allows.
	virtual void streamModel(const std::string& path, Mesh& mesh, float scale) const = 0;
};

// The decoder for the extension of path: the text after the last '.' of
// its file name, compared without case. Throws ModelFormatDecoderExcep
// "filename too short: '<path>'" when the file name has no '.', and
// "key '<extension>' not found" when no decoder reads that extension.
const ModelDecoder& findDecoder(const std::string& path);

// Reads a model file with the decoder that its extension selects.
void loadModel(const std::string& path, Mesh& mesh, float scale);

// True for OBJ and PLY files, which wind a polygon counter-clockwise seen
// from its front, as the tools that write them do. A scene's own meshes
// (.vlmesh) keep the host's winding: clockwise seen from the front.
bool windsCounterClockwise(const std::string& path);

// Runs decode and raises the mesh's own failures (VelornException) again as
// ModelFormatDecoderExcep with the same text, so that callers of a decoder
// catch one exception type.
template <class F>
void translateMeshErrors(F&& decode)
{
	try
	{
		decode();
	}
	catch(const VelornException& e)
	{
		throw ModelFormatDecoderExcep(e.what());
	}
}

} // namespace Velorn
