#include "scene/material.h"

#include "scene/value_helpers.h"
#include "scene/xml_write.h"

namespace Velorn
{

using namespace XMLWrite;

Material::~Material() = default;

unsigned Material::getLayer() const { return 0; }

void Material::doVisit(VisitOperation&, SceneNode*) {}

bool Material::references(const SceneNode*) const { return false; }

Vector<UID> Material::getDependencyUIDs() const { return Vector<UID>(); }

bool Material::hasDisplacement() const { return false; }

void writeMaterialBody(const Material& material, OStream& stream, unsigned node_depth, WriteContext& context)
{
	const std::string type_name = material.getTypeName().str();
	writeOpenTag(stream, node_depth + 1, type_name.c_str());
	for(const Texture& texture : material.textures)
		texture.writeXML(stream, node_depth + 2, context);
	if(material.shared_shader_info.nonNull() && !material.shared_shader_info->isEmpty())
		writeWrapped(stream, node_depth, "shared_shader_info", material.shared_shader_info, context);
	material.writeXML(stream, node_depth + 1, context);
	writeCloseTag(stream, node_depth + 1, type_name.c_str());
	if(material.backface_emit)
		writeBool(stream, node_depth + 1, "backface_emit", true);
	if(material.shadow_catcher)
		writeBool(stream, node_depth + 1, "shadow_catcher", true);
}

void visitMaterial(Material& material, VisitOperation& op, SceneNode* owner)
{
	visitTexturePaths(material.textures, op);
	if(material.shared_shader_info.nonNull())
		material.shared_shader_info->doVisit(op);
	material.doVisit(op, owner);
}

} // namespace Velorn
