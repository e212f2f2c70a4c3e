#pragma once

#include "reader/parse_names.h"
#include "scene/channel_params.h"
#include "scene/material.h"
#include "scene/medium.h"
#include "scene/shader_info.h"
#include "scene/texture.h"
#include "scene/wavelength_values.h"

#include <tinyxml.h>

#include <string>

// Reading material and medium elements and the values in them, with the old
// element forms that files still hold. dir is the directory of the file
// being read, to which relative paths are joined. Failures throw
// SceneParserExcep with the place in the file.
namespace Velorn
{
namespace MaterialParser
{

// A material element (name, uid, one type child, ...). uid_out is invalid
// when the element has none. Names of materials and media refer through
// names.
Reference<Material> parseMaterial(const TiXmlElement& element, const std::string& dir, UID& uid_out, const ParseNames& names);
Reference<Medium> parseMedium(const TiXmlElement& element, const std::string& dir, UID& uid_out);

// element holds one of rgb, blackbody, peak, uniform, regular_tabulated.
Reference<Spectrum> parseSpectrum(const TiXmlElement& element);
Reference<TabulatedSpectralData> parseTabulatedSpectralData(const TiXmlElement& element);
Texture parseTexture(const TiXmlElement& element, const std::string& dir);
Reference<ShaderInfo> parseShaderInfo(const TiXmlElement& element, const std::string& dir);
// A param element of a shader info: one of real, int, colour3.
Reference<ShaderParam> parseShaderParam(const TiXmlElement& element);

// The channel readers: element holds one of the family's forms (constant,
// texture, shader, voxel). Texture indices are checked against num_textures.
Reference<WavelengthDependentParam> parseWavelengthDependentParam(const TiXmlElement& element, const std::string& dir, size_t num_textures);
Reference<WavelengthIndependentParam> parseWavelengthIndependentParam(const TiXmlElement& element, const std::string& dir, size_t num_textures);
Reference<DisplacementParam> parseDisplacementParam(const TiXmlElement& element, const std::string& dir, size_t num_textures);
Reference<Vec3Param> parseVec3Param(const TiXmlElement& element, const std::string& dir, size_t num_textures);
Reference<VolumeParam> parseVolumeParam(const TiXmlElement& element, const std::string& dir);
// The reader of Family among the four above that take texture indices, for
// code that is generic over the families.
template <class Family>
Reference<Family> parseParam(const TiXmlElement& element, const std::string& dir, size_t num_textures);

} // namespace MaterialParser
} // namespace Velorn
