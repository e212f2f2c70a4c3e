#pragma once

#include "c4d/base_container.h"
#include "c4d/base_material.h"
#include "c4d/c4d_string.h"
#include "materials/channel_export.h"

#include "scene/channel_params.h"
#include "scene/material.h"
#include "scene/medium.h"
#include "scene/wavelength_values.h"

#include <cstdint>
#include <string>
#include <vector>

// The parts of the material import that fill one host material's parameters
// from the values of a scene material: the channels (textures, shaders and
// constants), the spectra and the internal medium. The importer
// (material_import.cpp) chooses which member goes to which channel.

// One host material being filled from a scene material.
struct MaterialFill
{
	BaseMaterial& host;
	BaseContainer& data;
	// The scene material whose texture list the texture parameters index.
	const Velorn::Material& source;
	// The host material's name, as the warnings give it.
	String name;
	// Where a relative texture path is looked up: the material file's folder.
	std::string directory;
	// The warnings of the import, one a line.
	std::vector<String>& warnings;

	// Appends the warning "what in Material "NAME" not supported.".
	void unsupported(const std::string& what);
};

// What a constant spectrum of a channel becomes.
enum class SpectrumTarget
{
	// Colour, scale 1.0 and gamma of an RGB or the value of a uniform
	// spectrum; the other kinds are warned about under the channel's name.
	Albedo,
	AbsorptionLayer,
	// Every constant is warned about: the channel has only a texture form.
	Emission,
	// A generic spectrum channel (10000, 16000): unit colour, scale and
	// gamma, or the values of the mode; a table has no parameters.
	Generic,
};

// The ids of a texture channel as the import writes them. They are those of
// the export except the exponent channel's smooth flag, which the import
// writes into the bump channel's flag (6287).
ChannelIds importChannelIds(const ChannelIds& ids);

// The channel from a spectrum parameter: a texture, a shader, or the
// constant by target. A null parameter leaves the channel as it is.
void importSpectrumChannel(MaterialFill& fill, const Velorn::Reference<Velorn::WavelengthDependentParam>& param,
	const ChannelIds& ids, SpectrumTarget target);
// The channel from a real parameter; a constant goes to value_id times
// scale, and for generic channels (set_switch) also sets the switch.
void importRealChannel(MaterialFill& fill, const Velorn::Reference<Velorn::WavelengthIndependentParam>& param,
	const ChannelIds& ids, int32_t value_id, double scale = 1.0, bool set_switch = false);
// The channel from a displacement parameter; a constant goes to value_id,
// or, where value_id is 0, is warned about as "constant_name constant".
void importDisplacementChannel(MaterialFill& fill, const Velorn::Reference<Velorn::DisplacementParam>& param,
	const ChannelIds& ids, int32_t value_id, const char* constant_name);
void importNormalMap(MaterialFill& fill, const Velorn::Reference<Velorn::Vec3Param>& param);

// The base emission: its spectrum into the emission group by the
// spectrum's kind; MAT_USE_EMISSION on when the base emission is a
// constant with a spectrum.
void importBaseEmission(MaterialFill& fill, const Velorn::Reference<Velorn::WavelengthDependentParam>& param);

// The texture of the material's list at index into the channel: the file
// beside the material file when the path is relative; a missing file is told
// on the console and leaves the channel as it was. False then.
bool importTexture(MaterialFill& fill, int texture_index, const ChannelIds& ids);

// The unit colour of rgb: the colour divided by its largest component and
// that component as the scale when a component is above 1; else the colour
// as it is and scale 1.
void unitColour(const Velorn::Vec3d& rgb, Vector& colour, double& scale);

// The ids of one of the spectrum groups of the host material (emission,
// medium absorption, medium scattering).
struct SpectrumGroupIds
{
	int32_t mode;
	int32_t colour, scale, gamma;
	int32_t temperature, gain;
	int32_t peak_min, peak_width, peak_base, peak_value;
	int32_t uniform;
	int32_t table_start, table_end, table_values;
};
extern const SpectrumGroupIds emission_group_ids, absorption_group_ids, scattering_group_ids;
// Stores spectrum into the group by its kind. With invert_rgb an RGB colour
// is stored as the transmission colour the export inverts again.
void storeGroupSpectrum(BaseContainer& data, const SpectrumGroupIds& group, const Velorn::Spectrum& spectrum,
	bool invert_rgb = false);

// The internal medium of a specular or glossy transparent material.
void importMedium(MaterialFill& fill, const Velorn::Medium& medium);
