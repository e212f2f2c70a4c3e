#pragma once

#include "mesh/model_decoder.h"

namespace Velorn
{

// The library's own .vlmesh file. The mesh is stored in final form, so
// scale is not applied.
class VelornMeshDecoder : public ModelDecoder
{
public:
	std::vector<std::string> getExtensions() const override { return {"vlmesh"}; }
	void streamModel(const std::string& path, Mesh& mesh, float scale) const override;
};

} // namespace Velorn
