#pragma once

#include "scene/channel_params.h"

// The classes of the forms of each channel family, for readers that are
// generic over the families. A family's forms are the elements listed in
// names; those with a constant form say which class holds it.
namespace Velorn
{

template <class Family>
struct ChannelForms;

template <>
struct ChannelForms<WavelengthDependentParam>
{
	// The constant holds a spectrum.
	typedef ConstantWavelengthDependentParam Constant;
	typedef TextureWavelengthDependentParam Texture;
	typedef ShaderWavelengthDependentParam Shader;
	static constexpr const char* names[] = {"constant", "texture", "shader", nullptr};
};

template <>
struct ChannelForms<WavelengthIndependentParam>
{
	// The constant holds one number.
	typedef ConstantWavelengthIndependentParam Constant;
	typedef TextureWavelengthIndependentParam Texture;
	typedef ShaderWavelengthIndependentParam Shader;
	static constexpr const char* names[] = {"constant", "texture", "shader", nullptr};
};

template <>
struct ChannelForms<DisplacementParam>
{
	// The constant holds one number.
	typedef ConstantDisplacementParam Constant;
	typedef TextureDisplacementParam Texture;
	typedef ShaderDisplacementParam Shader;
	static constexpr const char* names[] = {"constant", "texture", "shader", nullptr};
};

template <>
struct ChannelForms<Vec3Param>
{
	typedef TextureVec3Param Texture;
	typedef ShaderVec3Param Shader;
	static constexpr const char* names[] = {"texture", "shader", nullptr};
};

} // namespace Velorn
