#include "scene/materials_basic.h"

#include "scene/material_channels.h"

namespace Velorn
{

namespace
{

Reference<WavelengthDependentParam> greyAlbedo()
{
	return new ConstantWavelengthDependentParam(new RGBSpectrum(Vec3d(0.5, 0.5, 0.5), 2.2));
}

// The tables: fields in the order of each class's element.

const auto diffuse_channels = [](const DiffuseMaterial& m, auto& f) {
	f("albedo", m.albedo);
	surfaceChannels(m, f);
	f("random_triangle_colours", m.random_triangle_colours);
	f("layer", m.layer);
};

const auto transmitter_channels = [](const DiffuseTransmitter& m, auto& f) {
	f("albedo", m.albedo);
	surfaceChannels(m, f);
	f("layer", m.layer);
	f("internal_medium", m.internal_medium);
};

const auto oren_nayar_channels = [](const OrenNayarMaterial& m, auto& f) {
	f("albedo", m.albedo);
	f("sigma", m.sigma);
	surfaceChannels(m, f);
	f("layer", m.layer);
};

const auto phong_channels = [](const PhongMaterial& m, auto& f) {
	f("diffuse_albedo", m.diffuse_albedo);
	f("specular_reflectivity", m.specular_reflectivity);
	f("exponent", m.exponent);
	surfaceChannels(m, f);
	f("fresnel_scale", m.fresnel_scale);
	f("layer", m.layer);
	f("ior", m.ior);
	f("nk_data", m.nk_data);
};

} // namespace

void DiffuseMaterial::doVisit(VisitOperation& op, SceneNode* owner) { visitChannels(diffuse_channels, *this, op, owner); }

void DiffuseMaterial::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeChannels(diffuse_channels, *this, stream, depth, context);
}

DiffuseTransmitter::DiffuseTransmitter() : albedo(greyAlbedo()) {}

void DiffuseTransmitter::doVisit(VisitOperation& op, SceneNode* owner)
{
	// A transmitter may have no medium at all (its medium switch off): the
	// writer leaves it out and the reader takes it so, and an invalid UID
	// then has nothing to bind to.
	if(internal_medium_uid.valid())
		bindTarget(internal_medium, internal_medium_uid, op, owner);
	visitChannels(transmitter_channels, *this, op, owner);
}

bool DiffuseTransmitter::references(const SceneNode* node) const { return internal_medium.getPointer() == node; }

Vector<UID> DiffuseTransmitter::getDependencyUIDs() const
{
	return targetDependencies(internal_medium_uid, internal_medium.getPointer());
}

void DiffuseTransmitter::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeChannels(transmitter_channels, *this, stream, depth, context);
}

OrenNayarMaterial::OrenNayarMaterial() : albedo(greyAlbedo()), sigma(new ConstantWavelengthIndependentParam(0)) {}

void OrenNayarMaterial::doVisit(VisitOperation& op, SceneNode* owner) { visitChannels(oren_nayar_channels, *this, op, owner); }

void OrenNayarMaterial::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeChannels(oren_nayar_channels, *this, stream, depth, context);
}

PhongMaterial::PhongMaterial() : exponent(new ConstantWavelengthIndependentParam(5000)) {}

void PhongMaterial::doVisit(VisitOperation& op, SceneNode* owner) { visitChannels(phong_channels, *this, op, owner); }

void PhongMaterial::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeChannels(phong_channels, *this, stream, depth, context);
}

} // namespace Velorn
