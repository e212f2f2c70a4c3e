#include "scene/channel_params.h"

#include "scene/xml_write.h"

namespace Velorn
{

using namespace XMLWrite;

WavelengthDependentParam::~WavelengthDependentParam() = default;
WavelengthIndependentParam::~WavelengthIndependentParam() = default;
DisplacementParam::~DisplacementParam() = default;
VolumeParam::~VolumeParam() = default;
Vec3Param::~Vec3Param() = default;

void writeShaderForm(OStream& stream, unsigned depth, const Reference<ShaderInfo>& shader_info, WriteContext& context)
{
	writeOpenTag(stream, depth, "shader");
	if(shader_info.nonNull())
		shader_info->writeXML(stream, depth + 1, context);
	writeCloseTag(stream, depth, "shader");
}

void writeTextureForm(OStream& stream, unsigned depth, int texture_index)
{
	writeOpenTag(stream, depth, "texture");
	writeInt(stream, depth + 1, "texture_index", texture_index);
	writeCloseTag(stream, depth, "texture");
}

void writeConstantSpectrum(OStream& stream, unsigned depth, const Reference<Spectrum>& spectrum)
{
	writeOpenTag(stream, depth, "constant");
	if(spectrum.nonNull())
		spectrum->writeXML(stream, depth + 1);
	writeCloseTag(stream, depth, "constant");
}

ConstantWavelengthDependentParam::ConstantWavelengthDependentParam(const ConstantWavelengthDependentParam& other)
	: CopyCloned(other), spectrum(cloneOrNull(other.spectrum))
{}

void ConstantWavelengthDependentParam::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	writeConstantSpectrum(stream, depth, spectrum);
}

void ConstantWavelengthIndependentParam::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	writeDouble(stream, depth + 1, "constant", value);
}

void ConstantDisplacementParam::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	writeOpenTag(stream, depth, "constant");
	writeTabs(stream, depth + 1);
	stream.write(numberText(value) + "\n");
	writeCloseTag(stream, depth, "constant");
}

void ConstantVolumeParam::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	writeConstantSpectrum(stream, depth, spectrum);
}

void ShaderVolumeParam::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeOpenTag(stream, depth, "shader");
	if(shader_info.nonNull())
		shader_info->writeXML(stream, depth + 1, context);
	writeBool(stream, depth + 1, "wavelength_dependent", wavelength_dependent);
	writeCloseTag(stream, depth, "shader");
}

void VoxelVolumeParam::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	writeOpenTag(stream, depth, "voxel");
	writeString(stream, depth + 1, "voxeldata_path", voxeldata_path);
	writeBool(stream, depth + 1, "wavelength_dependent", wavelength_dependent);
	writeCloseTag(stream, depth, "voxel");
}

} // namespace Velorn
