#pragma once

#include "c4d/base_container.h"
#include "c4d/base_material.h"
#include "export/export_settings.h"

#include "scene/channel_params.h"
#include "scene/material.h"
#include "scene/wavelength_values.h"

#include <cstdint>

// The parameters of one texture-capable channel of the plug-in material.
struct ChannelIds
{
	// The channel's switch.
	int32_t use;
	int32_t link;
	int32_t exponent, a, b, c;
	// 0 where the channel has no smooth flag.
	int32_t smooth;
	// The end of a baked file's name.
	const char* suffix;
	// The head of the shader text the translator completes.
	const char* header;
};

extern const ChannelIds albedo_channel, exponent_channel, sigma_channel, blend_factor_channel,
	absorption_layer_channel, bump_channel, displacement_channel, normal_map_channel, emission_channel;

// A generic channel of the coating and double sided kinds by its base id.
ChannelIds genericSpectrumChannel(int32_t base);
ChannelIds genericRealChannel(int32_t base);

// One material being built: the host material's values and the scene
// material whose texture list the channels append to.
struct ChannelBuild
{
	const BaseContainer& data;
	Velorn::Material& target;
	ExportSettings& settings;
	// The material's name, for what the console is told about it.
	String material_name = String();
};

// The subject of a console line about a material: "Material 'NAME'".
String materialSubject(const String& name);
// A link that holds something else than a material (an object, a shader)
// is told on the console as replaced by the empty link's default, and gives
// null, as an empty link does.
BaseMaterial* materialLink(const BaseContainer& data, int32_t id, const String& owner, const ExportSettings& settings);

// The channel builders: null where the switch is off. A linked bitmap shader
// gives a texture, one of the plug-in's own shaders a shader parameter, no
// shader the constant form (none for bump, displacement, normal map and the
// emission channel).
Velorn::Reference<Velorn::WavelengthDependentParam> spectrumChannel(
	const ChannelIds& ids, ChannelBuild& build, const Velorn::Reference<Velorn::Spectrum>& constant);
Velorn::Reference<Velorn::WavelengthIndependentParam> realChannel(const ChannelIds& ids, ChannelBuild& build,
	double constant);
Velorn::Reference<Velorn::DisplacementParam> displacementChannel(const ChannelIds& ids, ChannelBuild& build,
	const double* constant);
Velorn::Reference<Velorn::Vec3Param> normalMapChannel(ChannelBuild& build);

// The constant spectra of the channels.
Velorn::Reference<Velorn::Spectrum> rgbSpectrum(const Vector& colour, double scale, double gamma);
// Of a generic spectrum channel by its mode (RGB for any other mode).
Velorn::Reference<Velorn::Spectrum> genericChannelSpectrum(const BaseContainer& data, int32_t base);
// The base emission: null with emission off, and null for an unknown mode,
// which the console is told about under owner (a subject such as
// "Material 'NAME'").
Velorn::Reference<Velorn::WavelengthDependentParam> baseEmission(const BaseContainer& data, const String& owner);
// A tabulated spectrum from start and end in nanometres and the values as
// text: tokens at blanks, one that does not parse counting 0; fewer than two
// tokens give 0.1 and 0.1. The reader wants a table that covers 400 to 700
// nm: a later start or an earlier end moves to that bound, and, with an
// owner (a subject such as "Material 'NAME'"), the console is told.
Velorn::Reference<Velorn::Spectrum> tabulatedSpectrum(
	double start, double end, const String& values, const String& owner = String());

// The file a bitmap shader's name stands for: a preset image copied into
// the textures directory, an image beside the plug-in for a preview, one
// found from the document's path, or the name as it is.
String resolveTextureName(const String& name, ExportSettings& settings);
