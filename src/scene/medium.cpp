#include "scene/medium.h"

#include "scene/value_helpers.h"
#include "scene/xml_write.h"

namespace Velorn
{

using namespace XMLWrite;

PhaseFunction::~PhaseFunction() = default;

void UniformPhaseFunction::writeXML(OStream& stream, unsigned depth) const
{
	writeOpenTag(stream, depth, "uniform");
	writeCloseTag(stream, depth, "uniform");
}

void HenyeyGreensteinPhaseFunction::writeXML(OStream& stream, unsigned depth) const
{
	writeOpenTag(stream, depth, "henyey_greenstein");
	writeWrapped(stream, depth, "g_spectrum", g_spectrum);
	writeCloseTag(stream, depth, "henyey_greenstein");
}

SubsurfaceScattering::~SubsurfaceScattering() = default;

void SubsurfaceScattering::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeWrapped(stream, depth, "scattering_coefficient", scattering_coefficient, context);
	writeWrapped(stream, depth, "phase_function", phase_function);
}

Medium::~Medium() = default;

BasicMedium::BasicMedium() : absorption_coefficient(new ConstantVolumeParam(new UniformSpectrum(0))) {}

void BasicMedium::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeOpenTag(stream, depth, "basic");
	writeDouble(stream, depth + 1, "ior", ior);
	writeDouble(stream, depth + 1, "cauchy_b_coeff", cauchy_b_coeff);
	writeDouble(stream, depth + 1, "step_size", step_size);
	writeWrapped(stream, depth, "absorption_coefficient", absorption_coefficient, context);
	writeWrapped(stream, depth, "subsurface_scattering", subsurface_scattering, context);
	writeCloseTag(stream, depth, "basic");
}

void Dermis::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	writeOpenTag(stream, depth, "dermis");
	writeDouble(stream, depth + 1, "hemoglobin_fraction", hemoglobin_fraction);
	writeCloseTag(stream, depth, "dermis");
}

void Epidermis::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	writeOpenTag(stream, depth, "epidermis");
	writeDouble(stream, depth + 1, "melanin_fraction", melanin_fraction);
	writeDouble(stream, depth + 1, "melanin_type_blend", melanin_type_blend);
	writeCloseTag(stream, depth, "epidermis");
}

void Atmosphere::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	writeOpenTag(stream, depth, "atmosphere");
	writeVec3(stream, depth + 1, "center", center);
	writeDouble(stream, depth + 1, "turbidity", turbidity);
	writeCloseTag(stream, depth, "atmosphere");
}

} // namespace Velorn
