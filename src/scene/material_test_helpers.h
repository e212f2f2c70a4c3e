#pragma once

// Builders shared by the tests of materials and media.

#include "scene/scene_node_material.h"
#include "scene/scene_node_medium.h"
#include "scene/scene_node_mesh.h"
#include "scene/scene_node_root.h"
#include "scene/scene_node_scatter.h"
#include "scene/xml_write.h"

#include <cstdint>
#include <string>

namespace VelornTest
{

// A scatter node over the geometry with the given UID, and that geometry
// (an empty mesh node) if the root does not hold it yet, so that the scatter
// binds.
inline Velorn::Reference<Velorn::SceneNodeScatter> addScatter(Velorn::SceneNodeRoot& root, uint32_t uid, uint32_t geometry_uid)
{
	if(!root.findChild(Velorn::UID(geometry_uid)))
	{
		Velorn::Reference<Velorn::SceneNodeMesh> geometry(new Velorn::SceneNodeMesh());
		geometry->uid = Velorn::UID(geometry_uid);
		root.addChildNode(geometry);
	}
	Velorn::Reference<Velorn::SceneNodeScatter> scatter(new Velorn::SceneNodeScatter());
	scatter->uid = Velorn::UID(uid);
	scatter->geometry_uid = Velorn::UID(geometry_uid);
	root.addChildNode(scatter);
	return scatter;
}

// A node around the material, with the given name and UID.
inline Velorn::Reference<Velorn::SceneNodeMaterial> materialNode(Velorn::Material* material, const char* name, uint32_t uid)
{
	Velorn::Reference<Velorn::SceneNodeMaterial> node(new Velorn::SceneNodeMaterial(material));
	node->setName(name);
	node->uid = Velorn::UID(uid);
	return node;
}

// A node of a default BasicMedium.
inline Velorn::Reference<Velorn::SceneNodeMedium> mediumNode(const char* name, uint32_t uid)
{
	Velorn::Reference<Velorn::SceneNodeMedium> node(new Velorn::SceneNodeMedium());
	node->setName(name);
	node->uid = Velorn::UID(uid);
	return node;
}

// The text of a node's writeXML.
inline std::string textOf(const Velorn::SceneNode& node, bool write_uids = true, unsigned depth = 0)
{
	Velorn::BufferOStream stream;
	Velorn::WriteContext context;
	context.write_uids = write_uids;
	node.writeXML(stream, depth, context);
	return stream.str();
}

// A root with material and medium nodes added by UID.
class SceneBuilder
{
public:
	// Adds a node around the material and returns the material.
	template <class M>
	Velorn::Reference<M> add(M* material, const char* name, uint32_t uid)
	{
		root->addChildNode(materialNode(material, name, uid));
		return Velorn::Reference<M>(material);
	}
	Velorn::Reference<Velorn::SceneNodeMedium> addMedium(const char* name, uint32_t uid)
	{
		Velorn::Reference<Velorn::SceneNodeMedium> node = mediumNode(name, uid);
		root->addChildNode(node);
		return node;
	}
	Velorn::SceneNodeMaterial* node(uint32_t uid) const { return root->findMaterial(Velorn::UID(uid)); }
	void walk(Velorn::VisitOperation::Type type)
	{
		Velorn::VisitOperation op(type, "", "");
		root->visitTree(op);
	}

	Velorn::Reference<Velorn::SceneNodeRoot> root = new Velorn::SceneNodeRoot();
};

} // namespace VelornTest
