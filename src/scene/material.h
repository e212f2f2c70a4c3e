#pragma once

#include "scene/channel_params.h"
#include "scene/ostream.h"
#include "scene/shader_info.h"
#include "scene/texture.h"
#include "scene/uid.h"
#include "scene/visit_operation.h"
#include "scene/write_context.h"
#include "support/reference.h"
#include "support/velorn_string.h"
#include "support/velorn_vector.h"

namespace Velorn
{

class SceneNode;

// The numbers that Material::getType returns.
namespace MaterialType
{
enum : unsigned
{
	Blend = 0,
	Diffuse = 1,
	DiffuseTransmitter = 2,
	Null = 3,
	OrenNayar = 4,
	Phong = 5,
	Specular = 6,
	GlossyTransparent = 7,
	ExitPortal = 8,
	Sum = 9,
	SunSky = 10,
	Plugin = 11,
	Coating = 12,
	DoubleSidedThin = 13
};
} // namespace MaterialType

// What a renderer must know about a surface. A SceneNodeMaterial gives it a
// place in the scene; the background node holds one without a node.
class Material : public RefCounted
{
public:
	virtual ~Material();
	// The element of the class in a scene file.
	virtual String getTypeName() const = 0;
	virtual unsigned getType() const = 0;
	// The highest light layer the material emits into.
	virtual unsigned getLayer() const;
	// The class's part of a walk; owner is the node that holds the material.
	virtual void doVisit(VisitOperation& op, SceneNode* owner);
	// True if the material refers to the node, directly or through the
	// materials it refers to.
	virtual bool references(const SceneNode* node) const;
	// The UIDs of the nodes the material refers to, each after the ones its
	// target depends on.
	virtual Vector<UID> getDependencyUIDs() const;
	virtual bool hasDisplacement() const;
	// The fields of the class; the element around them is written by
	// writeMaterialBody.
	virtual void writeXML(OStream& stream, unsigned depth, WriteContext& context) const = 0;

	String name;
	// Parameters refer into this list by index.
	Vector<Texture> textures;
	// Written only when it is not empty.
	Reference<ShaderInfo> shared_shader_info;
	bool backface_emit = false;
	bool shadow_catcher = false;
};

// The element of a material's class with its textures, shared shader info
// and fields, then backface_emit and shadow_catcher when they are set, for
// the material of a node written at node_depth.
void writeMaterialBody(const Material& material, OStream& stream, unsigned node_depth, WriteContext& context);

// The walk of a material common to all classes: the texture paths, the
// shared shader info, then the class's own part.
void visitMaterial(Material& material, VisitOperation& op, SceneNode* owner);

// The material part shared by the classes that have a surface of their own:
// bump and displacement, emission, a normal map and the light layer of the
// emission.
class SurfaceMaterial : public Material
{
public:
	unsigned getLayer() const override { return layer; }
	bool hasDisplacement() const override { return displacement.nonNull(); }

	Reference<DisplacementParam> bump;
	Reference<DisplacementParam> displacement;
	Reference<WavelengthDependentParam> base_emission;
	Reference<WavelengthDependentParam> emission;
	Reference<Vec3Param> normal_map;
	unsigned layer = 0;
};

} // namespace Velorn
