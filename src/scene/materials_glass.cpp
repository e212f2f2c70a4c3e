#include "scene/materials_glass.h"

#include "scene/material_channels.h"
#include "scene/scene_node_root.h"
#include "support/exceptions.h"

namespace Velorn
{

namespace
{

// The tables: fields in the order of each class's element. The medium
// comes first in both.

const auto specular_channels = [](const SpecularMaterial& m, auto& f) {
	f("internal_medium", m.internal_medium);
	f("transparent", m.transparent);
	f("absorption_layer_transmittance", m.absorption_layer_transmittance);
	surfaceChannels(m, f);
	f("layer", m.layer);
	f("tabulated_external_reflection_coefficient", m.tabulated_external_reflection_coefficient);
	f("tabulated_internal_reflection_coefficient", m.tabulated_internal_reflection_coefficient);
	f("tabulated_transmission_coefficient", m.tabulated_transmission_coefficient);
};

const auto glossy_channels = [](const GlossyTransparent& m, auto& f) {
	f("internal_medium", m.internal_medium);
	f("exponent", m.exponent);
	f("absorption_layer_transmittance", m.absorption_layer_transmittance);
	surfaceChannels(m, f);
	f("layer", m.layer);
};

} // namespace

void SpecularMaterial::doVisit(VisitOperation& op, SceneNode* owner)
{
	if(op.type == VisitOperation::Bind && internal_medium.isNull())
	{
		SceneNodeRoot* root = owner ? owner->getRoot() : nullptr;
		if(!root)
			throw VelornException("Could not find root node in SpecularMaterial::doVisit().");
		internal_medium = root->findMedium(internal_medium_uid);
	}
	shiftUID(internal_medium_uid, op);
	visitChannels(specular_channels, *this, op, owner);
}

bool SpecularMaterial::references(const SceneNode* node) const { return internal_medium.getPointer() == node; }

Vector<UID> SpecularMaterial::getDependencyUIDs() const
{
	return targetDependencies(internal_medium_uid, internal_medium.getPointer());
}

void SpecularMaterial::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	ChannelWriter writer(stream, depth, context);
	specular_channels(*this, writer);
	if(!private_data.empty())
		writer("private_data", private_data);
}

GlossyTransparent::GlossyTransparent() : exponent(new ConstantWavelengthIndependentParam(5000)) {}

void GlossyTransparent::doVisit(VisitOperation& op, SceneNode* owner)
{
	bindTarget(internal_medium, internal_medium_uid, op, owner);
	shiftUID(internal_medium_uid, op);
	visitChannels(glossy_channels, *this, op, owner);
}

bool GlossyTransparent::references(const SceneNode* node) const { return internal_medium.getPointer() == node; }

Vector<UID> GlossyTransparent::getDependencyUIDs() const
{
	return targetDependencies(internal_medium_uid, internal_medium.getPointer());
}

void GlossyTransparent::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeChannels(glossy_channels, *this, stream, depth, context);
}

} // namespace Velorn
