#pragma once

// Shared by the tests of geometry nodes: a small mesh with the bytes of its
// checksum and of its .vlmesh file laid out by hand, so that expected file
// names and contents never come from the code under test, and helpers to
// run walks and catch failures.

#include "mesh/mesh.h"
#include "mesh/mesh_test_helpers.h"
#include "scene/material_test_helpers.h"
#include "scene/materials_basic.h"
#include "scene/scene_node.h"
#include "scene/scene_node_parametric_surface.h"
#include "scene/shader_info.h"
#include "scene/texture.h"
#include "support/exceptions.h"

#include <zlib.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace VelornTest
{

// Two materials "Red" and "Blue"; the unit square in z = 0 as four
// vertices; one triangle (0 1 2) of material 0 and one quad (0 1 2 3) of
// material 1; no normals, no UVs.
inline Velorn::Reference<Velorn::Mesh> sampleMesh()
{
	Velorn::Reference<Velorn::Mesh> mesh(new Velorn::Mesh());
	mesh->addMaterialUsed("Red");
	mesh->addMaterialUsed("Blue");
	mesh->addVertex(Velorn::Vec3f{0, 0, 0});
	mesh->addVertex(Velorn::Vec3f{1, 0, 0});
	mesh->addVertex(Velorn::Vec3f{1, 1, 0});
	mesh->addVertex(Velorn::Vec3f{0, 1, 0});
	mesh->addTriangle({0, 1, 2}, {0, 0, 0}, 0);
	mesh->addQuad({0, 1, 2, 3}, {0, 0, 0, 0}, 1);
	mesh->endOfModel();
	return mesh;
}

// The raw words of the sample mesh's vertices, triangle and quad.
inline Bytes& sampleVertexBytes(Bytes& b)
{
	const float corners[4][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
	for(const float(&corner)[3] : corners)
		b.f32(corner[0]).f32(corner[1]).f32(corner[2]);
	return b;
}
inline Bytes& sampleTriangleBytes(Bytes& b) { return b.u32(0).u32(1).u32(2).u32(0).u32(0).u32(0).u32(0); }
inline Bytes& sampleQuadBytes(Bytes& b) { return b.u32(0).u32(1).u32(2).u32(3).u32(0).u32(0).u32(0).u32(0).u32(1); }

// The byte count of the sample mesh's checksum: 4 for num_uv_mappings, the
// names (3 + 4), 4 vertices of 12, one triangle of 28, one quad of 36.
const uint64_t sample_mesh_byte_count = 4 + 3 + 4 + 4 * 12 + 28 + 36;

// zlib's CRC-32 over num_uv_mappings, the names without lengths, the
// vertices, uv_layout, the triangle and the quad; empty vectors add nothing.
inline uint32_t sampleMeshCRC()
{
	Bytes b;
	b.u32(0).raw("Red").raw("Blue");
	sampleVertexBytes(b).u32(0);
	sampleQuadBytes(sampleTriangleBytes(b));
	const std::string& bytes = b.bytes();
	const uLong crc = crc32(crc32(0L, Z_NULL, 0), reinterpret_cast<const Bytef*>(bytes.data()), (uInt)bytes.size());
	return (uint32_t)crc;
}

inline std::string sampleMeshFileName()
{
	return "mesh_" + std::to_string(sampleMeshCRC()) + "_" + std::to_string(sample_mesh_byte_count) + ".vlmesh";
}

// The whole .vlmesh file of the sample mesh, format version 3.
inline std::string sampleMeshFileBytes()
{
	Bytes b;
	b.u32(0x0053436F).u32(3).u32(0);          // magic, version, num_uv_mappings
	b.u32(2).str("Red").str("Blue");           // used_materials
	b.u32(0);                                  // UV set records, always empty
	sampleVertexBytes(b.u32(4)).u32(0).u32(0); // verts; normals; uv_layout
	b.u32(0);                                  // uv_pairs
	sampleTriangleBytes(b.u32(1));
	sampleQuadBytes(b.u32(1));
	return b.bytes();
}

inline Velorn::Texture textureAt(const char* path)
{
	Velorn::Texture texture;
	texture.path = path;
	return texture;
}

// A shader with the given include and texture; null leaves either out.
inline Velorn::Reference<Velorn::ShaderInfo> shaderUsing(const char* include, const char* texture_path)
{
	Velorn::Reference<Velorn::ShaderInfo> info(new Velorn::ShaderInfo());
	if(include)
		info->includes.push_back(include);
	if(texture_path)
		info->textures.push_back(textureAt(texture_path));
	return info;
}

// A diffuse material node without textures.
inline Velorn::Reference<Velorn::SceneNodeMaterial> plainNode(const char* name, uint32_t uid)
{
	return materialNode(new Velorn::DiffuseMaterial(), name, uid);
}

// A diffuse material node whose one texture is the given file.
inline Velorn::Reference<Velorn::SceneNodeMaterial> texturedNode(const char* name, uint32_t uid, const char* texture_path)
{
	Velorn::Reference<Velorn::DiffuseMaterial> diffuse(new Velorn::DiffuseMaterial());
	diffuse->textures.push_back(textureAt(texture_path));
	return materialNode(diffuse.getPointer(), name, uid);
}

// Three triangles over one set of vertices, of the materials "Glass",
// "Metal" and "Paint" at indices 0, 1 and 2.
inline Velorn::Reference<Velorn::Mesh> threeMaterialMesh()
{
	Velorn::Reference<Velorn::Mesh> mesh(new Velorn::Mesh());
	for(const char* name : {"Glass", "Metal", "Paint"})
		mesh->addMaterialUsed(name);
	mesh->addVertex(Velorn::Vec3f{0, 0, 0});
	mesh->addVertex(Velorn::Vec3f{1, 0, 0});
	mesh->addVertex(Velorn::Vec3f{0, 1, 0});
	for(uint32_t material = 0; material < 3; ++material)
		mesh->addTriangle({0, 1, 2}, {0, 0, 0}, material);
	mesh->endOfModel();
	return mesh;
}

// A root as the parser leaves it, for the nodes that bind to others: the
// materials Glass (3, with the texture glass.png), Metal (4) and Paint (5),
// the medium Water (6), the mesh node "Mesh3" (7) with threeMaterialMesh
// loaded, and a parametric surface (8).
struct GeometryScene
{
	GeometryScene()
	{
		root->addChildNode(texturedNode("Glass", 3, "glass.png"));
		root->addChildNode(plainNode("Metal", 4));
		root->addChildNode(plainNode("Paint", 5));
		root->addChildNode(mediumNode("Water", 6));
		mesh->uid = Velorn::UID(7);
		mesh->setName("Mesh3");
		mesh->setMesh(threeMaterialMesh());
		root->addChildNode(mesh);
		surface->uid = Velorn::UID(8);
		root->addChildNode(surface);
	}

	Velorn::SceneNode* node(uint32_t uid) const { return root->findChild(Velorn::UID(uid)); }
	Velorn::SceneNodeMaterial* material(uint32_t uid) const { return root->findMaterial(Velorn::UID(uid)); }
	Velorn::Vector<Velorn::Reference<Velorn::SceneNodeMaterial>> materials(std::initializer_list<uint32_t> uids) const
	{
		Velorn::Vector<Velorn::Reference<Velorn::SceneNodeMaterial>> list;
		for(uint32_t uid : uids)
			list.push_back(material(uid));
		return list;
	}
	// Adds a node of the given kind, UID and name.
	template <class Node>
	Velorn::Reference<Node> add(uint32_t uid, const char* name)
	{
		Velorn::Reference<Node> n(new Node());
		n->uid = Velorn::UID(uid);
		n->setName(name);
		root->addChildNode(n);
		return n;
	}

	Velorn::Reference<Velorn::SceneNodeRoot> root = new Velorn::SceneNodeRoot();
	Velorn::Reference<Velorn::SceneNodeMesh> mesh = new Velorn::SceneNodeMesh();
	Velorn::Reference<Velorn::SceneNodeParametricSurface> surface = new Velorn::SceneNodeParametricSurface();
};

// The values of a list of UIDs, for comparing with a literal list.
inline std::vector<uint32_t> valuesOf(const Velorn::Vector<Velorn::UID>& uids)
{
	std::vector<uint32_t> values;
	for(const Velorn::UID& uid : uids)
		values.push_back(uid.value());
	return values;
}

// "SceneParserExcep: " or "VelornException: " and the message of what f
// throws; "(no failure)" when it throws nothing.
inline std::string classAndFailureOf(const std::function<void()>& f)
{
	try
	{
		f();
	}
	catch(const Velorn::SceneParserExcep& e)
	{
		return "SceneParserExcep: " + e.what();
	}
	catch(const Velorn::VelornException& e)
	{
		return "VelornException: " + e.what();
	}
	return "(no failure)";
}

// The dependency paths a walk gathered, for comparing with a literal list.
inline std::vector<std::string> pathsOf(const Velorn::VisitOperation& op)
{
	std::vector<std::string> paths;
	for(const Velorn::String& path : op.dependency_paths)
		paths.push_back(path.str());
	return paths;
}

// One walk of the given type over the node alone, as the tree would hand it.
inline Velorn::VisitOperation visitNode(Velorn::SceneNode& node, Velorn::VisitOperation::Type type, uint32_t uid_offset = 0)
{
	Velorn::VisitOperation op(type, "", "");
	op.uid_offset = uid_offset;
	node.doVisit(op);
	return op;
}

// Expects the box a bounds walk gathered, within float rounding.
inline void expectBounds(const Velorn::VisitOperation& op, const float (&min)[3], const float (&max)[3])
{
	for(int i = 0; i < 3; ++i)
	{
		EXPECT_NEAR(op.bounds_min[i], min[i], 1e-5) << "axis " << i;
		EXPECT_NEAR(op.bounds_max[i], max[i], 1e-5) << "axis " << i;
	}
}

// A change to a node, and whether the node still equals an unchanged one.
template <class Node>
struct EqualityCase
{
	const char* change;
	std::function<void(Node&)> apply;
	bool still_equal;
};

// Expects two nodes from make to be equal, and doIsEqual both ways to give
// each case's answer once the case has changed one of them. What a node
// prints while comparing is dropped.
template <class Node, class Make>
void expectEqualityCases(Make make, const std::vector<EqualityCase<Node>>& cases)
{
	testing::internal::CaptureStdout();
	EXPECT_TRUE(make()->doIsEqual(*make()));
	for(const EqualityCase<Node>& c : cases)
	{
		SCOPED_TRACE(c.change);
		const auto reference = make();
		const auto changed = make();
		c.apply(*changed);
		EXPECT_EQ(reference->doIsEqual(*changed), c.still_equal);
		EXPECT_EQ(changed->doIsEqual(*reference), c.still_equal);
	}
	testing::internal::GetCapturedStdout();
}

// Two nodes made one after the other are named prefix and a number, the
// second one more than the first.
template <class Node>
inline void expectRunningNames(const std::string& prefix)
{
	Node first, second;
	const std::string name = first.getName().str();
	ASSERT_EQ(name.compare(0, prefix.size(), prefix), 0) << name;
	const std::string number = name.substr(prefix.size());
	ASSERT_FALSE(number.empty());
	EXPECT_EQ(number.find_first_not_of("0123456789"), std::string::npos) << name;
	EXPECT_EQ(second.getName().str(), prefix + std::to_string(std::stoul(number) + 1));
}

} // namespace VelornTest
