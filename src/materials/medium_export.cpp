#include "materials/channel_export.h"
#include "materials/material_export.h"

#include "c4d/base_material.h"
#include "c4d/console.h"
#include "host/plugin_ids.h"
#include "materials/material_ids.h"

#include "scene/medium.h"
#include "scene/scene_node_medium.h"

#include <set>

namespace
{

using Velorn::Reference;

// The parameters of one of the medium's spectrum groups.
struct SpectrumGroup
{
	int32_t mode;
	int32_t colour, gamma, scale;
	int32_t temperature, gain;
	int32_t peak_min, peak_width, peak_base, peak_value;
	int32_t uniform;
	int32_t table_start, table_end, table_values;
};

const SpectrumGroup absorption_group = {MAT_ABSORPTION_MODE, MAT_ABSORPTION_RGB_COLOUR, MAT_ABSORPTION_RGB_GAMMA,
	MAT_ABSORPTION_RGB_SCALE, MAT_ABSORPTION_BLACKBODY_TEMPERATURE, MAT_ABSORPTION_BLACKBODY_GAIN,
	MAT_ABSORPTION_PEAK_MIN, MAT_ABSORPTION_PEAK_WIDTH, MAT_ABSORPTION_PEAK_BASE, MAT_ABSORPTION_PEAK_VALUE,
	MAT_ABSORPTION_UNIFORM, MAT_ABSORPTION_TABLE_START, MAT_ABSORPTION_TABLE_END, MAT_ABSORPTION_TABLE_VALUES};
const SpectrumGroup scattering_group = {MAT_SCATTERING_MODE, MAT_SCATTERING_RGB_COLOUR, MAT_SCATTERING_RGB_GAMMA,
	MAT_SCATTERING_RGB_SCALE, MAT_SCATTERING_BLACKBODY_TEMPERATURE, MAT_SCATTERING_BLACKBODY_GAIN,
	MAT_SCATTERING_PEAK_MIN, MAT_SCATTERING_PEAK_WIDTH, MAT_SCATTERING_PEAK_BASE, MAT_SCATTERING_PEAK_VALUE,
	MAT_SCATTERING_UNIFORM, MAT_SCATTERING_TABLE_START, MAT_SCATTERING_TABLE_END, MAT_SCATTERING_TABLE_VALUES};

// The subject of console lines about a medium: "Medium 'NAME'".
String mediumSubject(const String& name)
{
	return String("Medium '") + name + String("'");
}

// The group's spectrum by its mode. With invert_rgb an RGB colour is read as
// a transmission colour: 1 - component. An unknown mode gives a uniform 0,
// as a parameter without spectrum is no scene the reader takes; the
// console is told under what (the group's name) and medium (its name).
Reference<Velorn::Spectrum> groupSpectrum(const BaseContainer& data, const SpectrumGroup& group, bool invert_rgb,
	const char* what, const String& medium)
{
	switch(data.GetInt32(group.mode))
	{
	case MAT_SPECTRUM_RGB:
	{
		Vector colour = data.GetVector(group.colour);
		if(invert_rgb)
			colour = Vector(1.0 - colour.x, 1.0 - colour.y, 1.0 - colour.z);
		return rgbSpectrum(colour, data.GetFloat(group.scale), data.GetFloat(group.gamma));
	}
	case MAT_SPECTRUM_BLACKBODY:
		return new Velorn::BlackBodySpectrum(data.GetFloat(group.temperature), data.GetFloat(group.gain));
	case MAT_SPECTRUM_PEAK:
	{
		Reference<Velorn::PeakSpectrum> peak = new Velorn::PeakSpectrum();
		peak->peak_min = data.GetFloat(group.peak_min);
		peak->peak_width = data.GetFloat(group.peak_width);
		peak->peak_value = data.GetFloat(group.peak_value);
		peak->base_value = data.GetFloat(group.peak_base);
		return peak;
	}
	case MAT_SPECTRUM_UNIFORM: return new Velorn::UniformSpectrum(data.GetFloat(group.uniform));
	case MAT_SPECTRUM_TABULATED:
		return tabulatedSpectrum(data.GetFloat(group.table_start, 400.0), data.GetFloat(group.table_end, 700.0),
			data.GetString(group.table_values), mediumSubject(medium));
	default:
		GePrint(mediumSubject(medium) + String(" has an unknown ") + String(what) + String(" spectrum mode ") +
			String::IntToString(data.GetInt32(group.mode)) + String("; the ") + String(what) +
			String(" was set to zero."));
		return new Velorn::UniformSpectrum(0.0);
	}
}

Reference<Velorn::Medium> basicMedium(const BaseContainer& data, const String& name)
{
	Reference<Velorn::BasicMedium> medium = new Velorn::BasicMedium();
	medium->ior = data.GetFloat(MAT_MEDIUM_IOR);
	medium->cauchy_b_coeff = data.GetFloat(MAT_MEDIUM_CAUCHY_B);
	medium->absorption_coefficient = new Velorn::ConstantVolumeParam(groupSpectrum(data, absorption_group, true, "absorption", name));
	if(data.GetBool(MAT_MEDIUM_SSS))
	{
		Reference<Velorn::SubsurfaceScattering> sss = new Velorn::SubsurfaceScattering();
		sss->scattering_coefficient = new Velorn::ConstantVolumeParam(groupSpectrum(data, scattering_group, false, "scattering", name));
		switch(data.GetInt32(MAT_PHASE_KIND))
		{
		case MAT_PHASE_UNIFORM: sss->phase_function = new Velorn::UniformPhaseFunction(); break;
		case MAT_PHASE_HENYEY_GREENSTEIN:
			sss->phase_function = new Velorn::HenyeyGreensteinPhaseFunction(
				rgbSpectrum(data.GetVector(MAT_PHASE_G), 1.0, data.GetFloat(MAT_PHASE_G_GAMMA)));
			break;
		default:
			// The reader refuses scattering without a phase function.
			GePrint(mediumSubject(name) + String(" has an unknown phase function kind ") +
				String::IntToString(data.GetInt32(MAT_PHASE_KIND)) +
				String("; it was exported with a uniform phase function."));
			sss->phase_function = new Velorn::UniformPhaseFunction();
			break;
		}
		medium->subsurface_scattering = sss;
	}
	return medium;
}

// The body by the medium's kind, named name.
Reference<Velorn::Medium> mediumBody(const BaseContainer& data, const ExportSettings& settings, const String& name)
{
	switch(data.GetInt32(MAT_MEDIUM_KIND))
	{
	case MAT_MEDIUM_BASIC: return basicMedium(data, name);
	case MAT_MEDIUM_DERMIS:
	{
		Reference<Velorn::Dermis> dermis = new Velorn::Dermis();
		dermis->hemoglobin_fraction = data.GetFloat(MAT_DERMIS_HEMOGLOBIN);
		return dermis;
	}
	case MAT_MEDIUM_EPIDERMIS:
	{
		Reference<Velorn::Epidermis> epidermis = new Velorn::Epidermis();
		epidermis->melanin_fraction = data.GetFloat(MAT_EPIDERMIS_MELANIN);
		epidermis->melanin_type_blend = data.GetFloat(MAT_EPIDERMIS_TYPE_BLEND);
		return epidermis;
	}
	case MAT_MEDIUM_ATMOSPHERE:
	{
		Reference<Velorn::Atmosphere> atmosphere = new Velorn::Atmosphere();
		atmosphere->turbidity = data.GetFloat(MAT_ATMOSPHERE_TURBIDITY);
		// The scene is z-up.
		const Vector centre = data.GetVector(MAT_ATMOSPHERE_CENTRE) * settings.scale;
		atmosphere->center = Velorn::Vec3d(centre.x, centre.z, centre.y);
		return atmosphere;
	}
	default:
		// The reader refuses a medium without a body.
		GePrint(mediumSubject(name) + String(" is of unknown kind ") +
			String::IntToString(data.GetInt32(MAT_MEDIUM_KIND)) + String("; it was exported as a basic medium."));
		return basicMedium(data, name);
	}
}

bool holdsMedium(const BaseMaterial& material)
{
	if(material.GetType() != ID_VELORN_MATERIAL)
		return false;
	const int32_t kind = material.GetDataInstance()->GetInt32(MAT_TYPE);
	return kind == MAT_TYPE_DIFFUSE_TRANSMITTER || kind == MAT_TYPE_SPECULAR || kind == MAT_TYPE_GLOSSY_TRANSPARENT;
}

Velorn::UID exportMediumOnce(BaseMaterial* material, const String& name, Velorn::SceneNodeRoot& root,
	ExportSettings& settings, std::set<BaseMaterial*>& visited)
{
	if(!material || !settings.document)
		return Velorn::UID();
	const auto found = settings.medium_map.find(material);
	if(found != settings.medium_map.end())
		return found->second;
	const BaseContainer& data = *material->GetDataInstance();

	// The medium of another glass-like material; a chain of sources that
	// comes back to a material met before ends there with the medium of its
	// own.
	visited.insert(material);
	BaseMaterial* source = materialLink(data, MAT_MEDIUM_SOURCE, name, settings);
	if(source && holdsMedium(*source) && !visited.count(source))
		return exportMediumOnce(source, source->GetName(), root, settings, visited);

	const String medium_name = name + "Med";
	Reference<Velorn::SceneNodeMedium> node = new Velorn::SceneNodeMedium(mediumBody(data, settings, medium_name));
	node->setName(Velorn::String(medium_name.GetStdString()));
	if(node->medium.nonNull())
		node->medium->precedence = data.GetInt32(MAT_MEDIUM_PRECEDENCE, 1);
	root.addChildNode(node);
	settings.medium_map[material] = node->uid;
	return node->uid;
}

} // namespace

Velorn::UID exportMedium(BaseMaterial* material, const String& name, Velorn::SceneNodeRoot& root,
	ExportSettings& settings)
{
	std::set<BaseMaterial*> visited;
	return exportMediumOnce(material, name, root, settings, visited);
}
