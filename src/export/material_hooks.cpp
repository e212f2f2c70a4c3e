#include "export/material_hooks.h"

#include "c4d/base_material.h"
#include "c4d/filename.h"
#include "host/plugin_ids.h"
#include "support/file_utils.h"

namespace
{

const MaterialExportHooks* installed = nullptr;

// The plug-in material's emission scale parameters.
enum
{
	mat_emission_scale_on = 6080,
	mat_emission_scale_measure = 6083,
	mat_measure_luminous_flux = 6084,
	mat_measure_luminous_intensity = 6085,
	mat_measure_luminance = 6086,
	mat_measure_luminous_emittance = 6087,
	mat_emission_scale_value = 6088,
	mat_ies_on = 6281,
	mat_ies_file = 6282,
};

} // namespace

void SetMaterialExportHooks(const MaterialExportHooks* hooks)
{
	installed = hooks;
}

const MaterialExportHooks* GetMaterialExportHooks()
{
	return installed;
}

Velorn::Reference<Velorn::EmissionScale> materialEmissionScale(const BaseMaterial& material)
{
	const BaseContainer& data = *material.GetDataInstance();
	if(material.GetType() != ID_VELORN_MATERIAL || !data.GetBool(mat_emission_scale_on))
		return nullptr;
	Velorn::Reference<Velorn::EmissionScale> scale = new Velorn::EmissionScale();
	switch(data.GetInt32(mat_emission_scale_measure))
	{
	case mat_measure_luminous_flux: scale->measure = Velorn::EmissionScale::LuminousFlux; break;
	case mat_measure_luminous_intensity: scale->measure = Velorn::EmissionScale::LuminousIntensity; break;
	case mat_measure_luminance: scale->measure = Velorn::EmissionScale::Luminance; break;
	case mat_measure_luminous_emittance: scale->measure = Velorn::EmissionScale::LuminousEmittance; break;
	default: break;
	}
	scale->value = data.GetFloat(mat_emission_scale_value);
	return scale;
}

Velorn::Reference<Velorn::IESProfile> iesProfile(Velorn::UID material, const String& path)
{
	Velorn::Reference<Velorn::IESProfile> profile = new Velorn::IESProfile();
	profile->material_uid = material;
	profile->path = Velorn::String(path.GetStdString());
	return profile;
}

Velorn::Reference<Velorn::IESProfile> materialIESProfile(const BaseMaterial& material, const Filename& export_dir)
{
	const BaseContainer& data = *material.GetDataInstance();
	if(material.GetType() != ID_VELORN_MATERIAL || data.GetInt32(mat_ies_on) != 1)
		return nullptr;
	const String file = data.GetFilename(mat_ies_file).GetString();
	if(!file.Content())
		return nullptr;
	// A relative path keeps the scene and its profile movable together.
	return iesProfile(Velorn::UID(),
		String(Velorn::FileUtils::relativePath(export_dir.GetString().GetStdString(), file.GetStdString())));
}
