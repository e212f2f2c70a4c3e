#include "mesh/velorn_mesh_decoder.h"

#include "mesh/mesh_file.h"

namespace Velorn
{

void VelornMeshDecoder::streamModel(const std::string& path, Mesh& mesh, float) const
{
	translateMeshErrors([&] { readMeshFromFile(path, mesh); });
}

} // namespace Velorn
