#pragma once

#include "scene/ostream.h"
#include "scene/shader_info.h"
#include "scene/wavelength_values.h"
#include "scene/value_helpers.h"
#include "scene/visit_operation.h"
#include "scene/write_context.h"
#include "support/reference.h"
#include "support/velorn_string.h"

namespace Velorn
{

class SceneNode;

// The values of material and medium channels. Each channel holds a constant,
// a shader program or the index of one of the enclosing material's textures
// (counted from 0 and not checked on writing). There are five families by
// what the channel's value is; their operations stand in the order the
// families were always declared in.

// A value over wavelength: a colour, an albedo, an emission.
class WavelengthDependentParam : public RefCounted
{
public:
	virtual ~WavelengthDependentParam();
	virtual void writeXML(OStream& stream, unsigned depth, WriteContext& context) const = 0;
	virtual unsigned getType() const = 0;
	virtual void doVisit(VisitOperation& op, SceneNode* owner) = 0;
	virtual Reference<WavelengthDependentParam> clone() const = 0;
};

// One number for all wavelengths: an exponent, a roughness, a weight.
class WavelengthIndependentParam : public RefCounted
{
public:
	virtual ~WavelengthIndependentParam();
	virtual void writeXML(OStream& stream, unsigned depth, WriteContext& context) const = 0;
	virtual unsigned getType() const = 0;
	virtual Reference<WavelengthIndependentParam> clone() const = 0;
	virtual void doVisit(VisitOperation& op, SceneNode* owner) = 0;
};

// A height: bump, displacement, a blend factor.
class DisplacementParam : public RefCounted
{
public:
	virtual ~DisplacementParam();
	virtual void writeXML(OStream& stream, unsigned depth, WriteContext& context) const = 0;
	virtual unsigned getType() const = 0;
	virtual void doVisit(VisitOperation& op, SceneNode* owner) = 0;
	virtual Reference<DisplacementParam> clone() const = 0;
};

// A coefficient through a volume. Media do not walk their values, so this
// family takes no part in walks.
class VolumeParam : public RefCounted
{
public:
	virtual ~VolumeParam();
	virtual void writeXML(OStream& stream, unsigned depth, WriteContext& context) const = 0;
	virtual unsigned getType() const = 0;
};

// A direction or a colour of three components: a normal map.
class Vec3Param : public RefCounted
{
public:
	virtual ~Vec3Param();
	virtual void writeXML(OStream& stream, unsigned depth, WriteContext& context) const = 0;
	virtual unsigned getType() const = 0;
	virtual void doVisit(VisitOperation& op, SceneNode* owner) = 0;
	virtual Reference<Vec3Param> clone() const = 0;
};

// <shader>, the shader info one level in, </shader>.
void writeShaderForm(OStream& stream, unsigned depth, const Reference<ShaderInfo>& shader_info, WriteContext& context);
// <texture>, texture_index one level in, </texture>.
void writeTextureForm(OStream& stream, unsigned depth, int texture_index);
// <constant>, the spectrum one level in, </constant>; empty for no spectrum.
void writeConstantSpectrum(OStream& stream, unsigned depth, const Reference<Spectrum>& spectrum);

// The shader form of a family: the walk goes to the shader info. Copies are
// deep.
template <class Derived, class Family, unsigned TYPE>
class ShaderChannel : public CopyCloned<Derived, Family>
{
public:
	ShaderChannel() = default;
	explicit ShaderChannel(const Reference<ShaderInfo>& shader_info_) : shader_info(shader_info_) {}
	ShaderChannel(const ShaderChannel& other) : CopyCloned<Derived, Family>(other), shader_info(cloneOrNull(other.shader_info)) {}

	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override
	{
		writeShaderForm(stream, depth, shader_info, context);
	}
	unsigned getType() const override { return TYPE; }
	void doVisit(VisitOperation& op, SceneNode*) override
	{
		if(shader_info.nonNull())
			shader_info->doVisit(op);
	}

	Reference<ShaderInfo> shader_info;
};

// The texture form of a family: an index into the material's textures.
template <class Derived, class Family, unsigned TYPE>
class TextureChannel : public CopyCloned<Derived, Family>
{
public:
	TextureChannel() = default;
	explicit TextureChannel(int texture_index_) : texture_index(texture_index_) {}

	void writeXML(OStream& stream, unsigned depth, WriteContext&) const override { writeTextureForm(stream, depth, texture_index); }
	unsigned getType() const override { return TYPE; }
	void doVisit(VisitOperation&, SceneNode*) override {}

	int texture_index = 0;
};

// Copies are deep.
class ConstantWavelengthDependentParam : public CopyCloned<ConstantWavelengthDependentParam, WavelengthDependentParam>
{
public:
	ConstantWavelengthDependentParam() = default;
	explicit ConstantWavelengthDependentParam(const Reference<Spectrum>& spectrum_) : spectrum(spectrum_) {}
	ConstantWavelengthDependentParam(const ConstantWavelengthDependentParam& other);

	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	unsigned getType() const override { return 0; }
	void doVisit(VisitOperation&, SceneNode*) override {}

	Reference<Spectrum> spectrum;
};

class ShaderWavelengthDependentParam : public ShaderChannel<ShaderWavelengthDependentParam, WavelengthDependentParam, 1>
{
public:
	using ShaderChannel::ShaderChannel;
};

class TextureWavelengthDependentParam : public TextureChannel<TextureWavelengthDependentParam, WavelengthDependentParam, 2>
{
public:
	using TextureChannel::TextureChannel;
};

// Unlike the other constants it opens no element of its own: it writes the
// constant element one level inside depth.
class ConstantWavelengthIndependentParam : public CopyCloned<ConstantWavelengthIndependentParam, WavelengthIndependentParam>
{
public:
	ConstantWavelengthIndependentParam() = default;
	explicit ConstantWavelengthIndependentParam(double value_) : value(value_) {}

	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	unsigned getType() const override { return 0; }
	void doVisit(VisitOperation&, SceneNode*) override {}

	double value = 0;
};

class ShaderWavelengthIndependentParam
	: public ShaderChannel<ShaderWavelengthIndependentParam, WavelengthIndependentParam, 1>
{
public:
	using ShaderChannel::ShaderChannel;
};

class TextureWavelengthIndependentParam
	: public TextureChannel<TextureWavelengthIndependentParam, WavelengthIndependentParam, 2>
{
public:
	using TextureChannel::TextureChannel;
};

// The constant element on three lines, the number on the middle one.
class ConstantDisplacementParam : public CopyCloned<ConstantDisplacementParam, DisplacementParam>
{
public:
	ConstantDisplacementParam() = default;
	explicit ConstantDisplacementParam(double value_) : value(value_) {}

	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	unsigned getType() const override { return 0; }
	void doVisit(VisitOperation&, SceneNode*) override {}

	double value = 0;
};

class ShaderDisplacementParam : public ShaderChannel<ShaderDisplacementParam, DisplacementParam, 1>
{
public:
	using ShaderChannel::ShaderChannel;
};

class TextureDisplacementParam : public TextureChannel<TextureDisplacementParam, DisplacementParam, 2>
{
public:
	using TextureChannel::TextureChannel;
};

class ConstantVolumeParam : public VolumeParam
{
public:
	ConstantVolumeParam() = default;
	explicit ConstantVolumeParam(const Reference<Spectrum>& spectrum_) : spectrum(spectrum_) {}

	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	unsigned getType() const override { return 0; }

	Reference<Spectrum> spectrum;
};

// The shader form, with a flag telling whether the program's value depends
// on wavelength.
class ShaderVolumeParam : public VolumeParam
{
public:
	ShaderVolumeParam() = default;
	ShaderVolumeParam(const Reference<ShaderInfo>& shader_info_, bool wavelength_dependent_)
		: shader_info(shader_info_), wavelength_dependent(wavelength_dependent_)
	{}

	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	unsigned getType() const override { return 1; }

	Reference<ShaderInfo> shader_info;
	bool wavelength_dependent = false;
};

// Values from a file of voxel data.
class VoxelVolumeParam : public VolumeParam
{
public:
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	unsigned getType() const override { return 2; }

	String voxeldata_path;
	bool wavelength_dependent = false;
};

class ShaderVec3Param : public ShaderChannel<ShaderVec3Param, Vec3Param, 0>
{
public:
	using ShaderChannel::ShaderChannel;
};

class TextureVec3Param : public TextureChannel<TextureVec3Param, Vec3Param, 1>
{
public:
	using TextureChannel::TextureChannel;
};

} // namespace Velorn
