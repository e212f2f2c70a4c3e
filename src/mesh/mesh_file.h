#pragma once

#include <iosfwd>
#include <string>

// The binary .vlmesh file: a header (magic, format version,
// num_uv_mappings), then the mesh's vectors as counts followed by raw
// little-endian elements. Paths are UTF-8. Failures throw VelornException.
namespace Velorn
{

class Mesh;

// Writes format version 3. The mesh's size checks run before the file is
// opened, so a mesh that fails them leaves no file behind.
void writeMeshToFile(const std::string& path, const Mesh& mesh);

// Reads versions 1 to 3 into mesh, then finalises it with endOfModel().
// Not transactional: after a failure the mesh may be partly filled and
// should be dropped.
void readMeshFromFile(const std::string& path, Mesh& mesh);
// Reads a mesh file's bytes from a seekable stream, as readMeshFromFile
// does; path names the source in messages.
void readMeshFromStream(std::istream& stream, const std::string& path, Mesh& mesh);

} // namespace Velorn
