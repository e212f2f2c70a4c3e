// Reads each input as a .vlmesh file. Any failure must be a
// VelornException; a crash, a sanitizer report, a hang or an allocation
// beyond the fuzzer's limit is a finding.
#include "mesh/mesh.h"
#include "mesh/mesh_file.h"
#include "support/exceptions.h"

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
	std::istringstream stream(std::string(reinterpret_cast<const char*>(data), size));
	Velorn::Mesh mesh;
	try
	{
		Velorn::readMeshFromStream(stream, "input", mesh);
	}
	catch(const Velorn::VelornException&)
	{
	}
	return 0;
}
