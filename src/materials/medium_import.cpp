#include "materials/material_import_fill.h"

#include "materials/material_ids.h"

namespace
{

// The spectrum of a constant volume parameter; null for the shader and
// voxel forms, which have no parameters on the host.
const Velorn::Spectrum* constantSpectrum(const Velorn::Reference<Velorn::VolumeParam>& param)
{
	const auto* constant = dynamic_cast<const Velorn::ConstantVolumeParam*>(param.getPointer());
	return constant ? constant->spectrum.getPointer() : nullptr;
}

void importPhaseFunction(BaseContainer& data, const Velorn::PhaseFunction* phase)
{
	if(dynamic_cast<const Velorn::UniformPhaseFunction*>(phase))
		data.SetInt32(MAT_PHASE_KIND, MAT_PHASE_UNIFORM);
	else if(const auto* hg = dynamic_cast<const Velorn::HenyeyGreensteinPhaseFunction*>(phase))
	{
		data.SetInt32(MAT_PHASE_KIND, MAT_PHASE_HENYEY_GREENSTEIN);
		const Velorn::Spectrum* g = hg->g_spectrum.getPointer();
		if(const auto* rgb = dynamic_cast<const Velorn::RGBSpectrum*>(g))
			data.SetVector(MAT_PHASE_G, Vector(rgb->rgb.x, rgb->rgb.y, rgb->rgb.z));
		else if(const auto* uniform = dynamic_cast<const Velorn::UniformSpectrum*>(g))
			data.SetVector(MAT_PHASE_G, Vector(uniform->value, uniform->value, uniform->value));
		// The values are taken as they stand.
		data.SetFloat(MAT_PHASE_G_GAMMA, 1.0);
	}
}

void importBasicMedium(BaseContainer& data, const Velorn::BasicMedium& basic)
{
	data.SetInt32(MAT_MEDIUM_KIND, MAT_MEDIUM_BASIC);
	data.SetFloat(MAT_MEDIUM_IOR, basic.ior);
	data.SetFloat(MAT_MEDIUM_CAUCHY_B, basic.cauchy_b_coeff);
	// The host's colour is what the medium lets through; the export turns
	// it into the absorption, so it is turned back here.
	if(const Velorn::Spectrum* absorption = constantSpectrum(basic.absorption_coefficient))
		storeGroupSpectrum(data, absorption_group_ids, *absorption, true);
	if(basic.subsurface_scattering.isNull())
		return;
	data.SetBool(MAT_MEDIUM_SSS, true);
	if(const Velorn::Spectrum* scattering = constantSpectrum(basic.subsurface_scattering->scattering_coefficient))
		storeGroupSpectrum(data, scattering_group_ids, *scattering);
	importPhaseFunction(data, basic.subsurface_scattering->phase_function.getPointer());
}

} // namespace

void importMedium(MaterialFill& fill, const Velorn::Medium& medium)
{
	BaseContainer& data = fill.data;
	data.SetInt32(MAT_MEDIUM_PRECEDENCE, medium.precedence);
	if(const auto* basic = dynamic_cast<const Velorn::BasicMedium*>(&medium))
		importBasicMedium(data, *basic);
	else if(const auto* dermis = dynamic_cast<const Velorn::Dermis*>(&medium))
	{
		data.SetInt32(MAT_MEDIUM_KIND, MAT_MEDIUM_DERMIS);
		data.SetFloat(MAT_DERMIS_HEMOGLOBIN, dermis->hemoglobin_fraction);
	}
	else if(const auto* epidermis = dynamic_cast<const Velorn::Epidermis*>(&medium))
	{
		data.SetInt32(MAT_MEDIUM_KIND, MAT_MEDIUM_EPIDERMIS);
		data.SetFloat(MAT_EPIDERMIS_MELANIN, epidermis->melanin_fraction);
		data.SetFloat(MAT_EPIDERMIS_TYPE_BLEND, epidermis->melanin_type_blend);
	}
	else if(const auto* atmosphere = dynamic_cast<const Velorn::Atmosphere*>(&medium))
	{
		data.SetInt32(MAT_MEDIUM_KIND, MAT_MEDIUM_ATMOSPHERE);
		data.SetFloat(MAT_ATMOSPHERE_TURBIDITY, atmosphere->turbidity);
		// The scene is z-up, the host y-up: y and z change places back. The
		// export's unit scale is not known here, so the centre keeps the
		// scene's numbers.
		const Velorn::Vec3d& c = atmosphere->center;
		data.SetVector(MAT_ATMOSPHERE_CENTRE, Vector(c.x, c.z, c.y));
	}
}
