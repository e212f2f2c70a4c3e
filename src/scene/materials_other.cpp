#include "scene/materials_other.h"

#include "scene/material_channels.h"

#include <algorithm>

namespace Velorn
{

namespace
{

// The tables: fields in the order of each class's element.

const auto sunsky_channels = [](const SunSkyMaterial& m, auto& f) {
	f("sundir", m.sundir);
	f("turbidity", m.turbidity);
	f("extra_atmospheric", m.extra_atmospheric);
	f("enable_sky", m.enable_sky);
	f("sun_layer", m.sun_layer);
	f("sky_layer", m.sky_layer);
	f("model", m.model);
};

const auto plugin_channels = [](const PluginMaterial& m, auto& f) {
	f("layer", m.layer);
	f("plugin_name", m.plugin_name);
	f("material_name", m.material_name);
};

template <class Param>
void visitNamedParams(const Vector<NamedParam<Param>>& params, const ChannelVisitor& visitor)
{
	for(const NamedParam<Param>& named : params)
		visitor("", named.param);
}

} // namespace

unsigned SunSkyMaterial::getLayer() const { return (unsigned)std::max(sun_layer, sky_layer); }

void SunSkyMaterial::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeChannels(sunsky_channels, *this, stream, depth, context);
}

// Volume parameters take no part in walks, so that list is not walked.
void PluginMaterial::doVisit(VisitOperation& op, SceneNode* owner)
{
	const ChannelVisitor visitor(op, owner);
	visitNamedParams(wavelength_dependent, visitor);
	visitNamedParams(wavelength_independent, visitor);
	visitNamedParams(displacement, visitor);
	visitNamedParams(vec3, visitor);
}

void PluginMaterial::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeChannels(plugin_channels, *this, stream, depth, context);
}

} // namespace Velorn
