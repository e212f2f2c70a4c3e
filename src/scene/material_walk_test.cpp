#include "scene/geometry_test_helpers.h"
#include "scene/material_test_helpers.h"
#include "scene/materials_basic.h"
#include "scene/materials_composite.h"
#include "scene/materials_glass.h"
#include "support/exceptions.h"
#include "support/failures.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

using namespace Velorn;
using VelornTest::pathsOf;
using VelornTest::SceneBuilder;

namespace
{

BlendMaterial* blendOf(uint32_t a, uint32_t b)
{
	BlendMaterial* blend = new BlendMaterial();
	blend->a_mat_uid = UID(a);
	blend->b_mat_uid = UID(b);
	return blend;
}

CoatingMaterial* coatingOver(uint32_t substrate)
{
	CoatingMaterial* coating = new CoatingMaterial();
	coating->substrate_material_uid = UID(substrate);
	return coating;
}

DoubleSidedThinMaterial* sidesOf(uint32_t front, uint32_t back)
{
	DoubleSidedThinMaterial* sides = new DoubleSidedThinMaterial();
	sides->front_material_uid = UID(front);
	sides->back_material_uid = UID(back);
	return sides;
}

SumMaterial* sumOf(const Vector<UID>& uids, size_t count)
{
	SumMaterial* sum = new SumMaterial();
	sum->mat_uids = uids;
	sum->materials.resize(count);
	for(size_t i = 0; i < count; ++i)
		sum->weights.push_back(new ConstantWavelengthIndependentParam(0.5));
	return sum;
}

template <class M>
M* inMedium(uint32_t medium)
{
	M* material = new M();
	material->internal_medium_uid = UID(medium);
	return material;
}

// A scene with a medium (3) and two diffuse materials (2 and 5).
void addTargets(SceneBuilder& scene)
{
	scene.addMedium("Water", 3);
	scene.add(new DiffuseMaterial(), "Red", 2);
	scene.add(new DiffuseMaterial(), "Blue", 5);
}

// One material of each class that holds targets, over the targets of
// addTargets: the nodes have UIDs 10 to 16 in the order of the fields.
struct TargetHolders
{
	explicit TargetHolders(SceneBuilder& scene)
		: blend(scene.add(blendOf(2, 5), "Blend", 10)), coating(scene.add(coatingOver(5), "Coating", 11)),
		  sides(scene.add(sidesOf(5, 2), "Sides", 12)), sum(scene.add(sumOf({UID(5), UID(2)}, 2), "Sum", 13)),
		  specular(scene.add(inMedium<SpecularMaterial>(3), "Specular", 14)),
		  glossy(scene.add(inMedium<GlossyTransparent>(3), "Glossy", 15)),
		  transmitter(scene.add(inMedium<DiffuseTransmitter>(3), "Transmitter", 16))
	{}

	Reference<BlendMaterial> blend;
	Reference<CoatingMaterial> coating;
	Reference<DoubleSidedThinMaterial> sides;
	Reference<SumMaterial> sum;
	Reference<SpecularMaterial> specular;
	Reference<GlossyTransparent> glossy;
	Reference<DiffuseTransmitter> transmitter;
};

std::string bindFailure(Material* material, const Vector<UID>& scatter_uids = Vector<UID>())
{
	SceneBuilder scene;
	addTargets(scene);
	scene.add(material, "Grass", 1);
	scene.node(1)->scatter_uids = scatter_uids;
	return VelornTest::failureOf<VelornException>([&] { scene.walk(VisitOperation::Bind); });
}

} // namespace

TEST(MaterialBinding, TargetsAreFoundByTheirUIDs)
{
	SceneBuilder scene;
	addTargets(scene);
	TargetHolders m(scene);

	scene.walk(VisitOperation::Bind);

	SceneNode* red = scene.node(2);
	SceneNode* blue = scene.node(5);
	SceneNode* water = scene.root->findMedium(UID(3));
	EXPECT_EQ(m.blend->a_mat.getPointer(), red);
	EXPECT_EQ(m.blend->b_mat.getPointer(), blue);
	EXPECT_EQ(m.coating->substrate_material.getPointer(), blue);
	EXPECT_EQ(m.sides->front_material.getPointer(), blue);
	EXPECT_EQ(m.sides->back_material.getPointer(), red);
	EXPECT_EQ(m.sum->materials[0].getPointer(), blue);
	EXPECT_EQ(m.sum->materials[1].getPointer(), red);
	EXPECT_EQ(m.specular->internal_medium.getPointer(), water);
	EXPECT_EQ(m.glossy->internal_medium.getPointer(), water);
	EXPECT_EQ(m.transmitter->internal_medium.getPointer(), water);
}

TEST(MaterialBinding, TargetsSetByTheirMakerStay)
{
	SceneBuilder scene;
	addTargets(scene);
	Reference<BlendMaterial> blend = scene.add(blendOf(99, 98), "Blend", 10);
	blend->a_mat = scene.node(2);
	blend->b_mat = scene.node(5);
	Reference<SumMaterial> sum = scene.add(sumOf({}, 1), "Sum", 11);
	sum->materials[0] = scene.node(5);

	scene.walk(VisitOperation::Bind);
	EXPECT_EQ(blend->a_mat.getPointer(), scene.node(2));
	EXPECT_EQ(blend->b_mat.getPointer(), scene.node(5));
	EXPECT_EQ(sum->materials[0].getPointer(), scene.node(5));
}

TEST(MaterialBinding, FailuresSayWhatWasWrong)
{
	struct Case
	{
		const char* what;
		std::function<std::string()> bind;
		const char* message;
	};
	const Case cases[] = {
		{"blend to a missing UID", [] { return bindFailure(blendOf(7, 2)); }, "Failed to find node with UID 7"},
		{"coating over a medium", [] { return bindFailure(coatingOver(3)); }, "Node with UID 3 was not a material node."},
		{"double sided with a missing back", [] { return bindFailure(sidesOf(2, 8)); }, "Failed to find node with UID 8"},
		{"sum over a medium", [] { return bindFailure(sumOf({UID(3)}, 1)); }, "Node with UID 3 was not a material node."},
		{"sum with fewer UIDs than materials", [] { return bindFailure(sumOf({UID(2)}, 2)); },
			"Material was NULL and no mat_uid with same index."},
		{"specular in a material", [] { return bindFailure(inMedium<SpecularMaterial>(2)); },
			"Node with UID 2 was not a medium node."},
		{"glossy in a missing medium", [] { return bindFailure(inMedium<GlossyTransparent>(4)); },
			"Failed to find node with UID 4"},
		{"transmitter in a material", [] { return bindFailure(inMedium<DiffuseTransmitter>(5)); },
			"Node with UID 5 was not a medium node."},
		{"specular outside a scene",
			[] {
				Reference<SceneNodeMaterial> node = VelornTest::materialNode(inMedium<SpecularMaterial>(3), "Loose", 1);
				VisitOperation bind(VisitOperation::Bind, "", "");
				return VelornTest::failureOf<VelornException>([&] { node->doVisit(bind); });
			},
			"Could not find root node in SpecularMaterial::doVisit()."},
		{"missing scatter", [] { return bindFailure(new DiffuseMaterial(), {UID(40)}); },
			"While processing node 'Grass', UID 1:  Failed to find scatter node for UID 40"},
		{"scatter UID of a material", [] { return bindFailure(new DiffuseMaterial(), {UID(2)}); },
			"Referenced node did not have type SceneNodeScatter"},
		{"scatters outside a scene",
			[] {
				Reference<SceneNodeMaterial> node = VelornTest::materialNode(new DiffuseMaterial(), "Loose", 1);
				node->scatter_uids.push_back(UID(40));
				VisitOperation bind(VisitOperation::Bind, "", "");
				return VelornTest::failureOf<VelornException>([&] { node->doVisit(bind); });
			},
			"While binding scatter node: root node was NULL"},
	};
	for(const Case& c : cases)
		EXPECT_EQ(c.bind(), c.message) << c.what;
}

TEST(MaterialBinding, ScattersLearnTheirMaterialAndAreListedOnce)
{
	SceneBuilder scene;
	scene.add(new DiffuseMaterial(), "Grass", 1);
	Reference<SceneNodeScatter> first = VelornTest::addScatter(*scene.root, 30, 40);
	Reference<SceneNodeScatter> second = VelornTest::addScatter(*scene.root, 31, 40);
	scene.node(1)->scatter_uids = {UID(31), UID(30)};

	scene.walk(VisitOperation::Bind);
	scene.walk(VisitOperation::Bind);

	const Vector<SceneNode*>& scatters = scene.node(1)->scatters;
	ASSERT_EQ(scatters.size(), 2u);
	EXPECT_EQ(scatters[0], second.getPointer());
	EXPECT_EQ(scatters[1], first.getPointer());
	EXPECT_EQ(first->bound_target_uid, UID(1));
	EXPECT_EQ(second->bound_target_uid, UID(1));
}

TEST(MaterialBinding, CompositesHandTheWalkOnToTheirTargets)
{
	SceneBuilder scene;
	addTargets(scene);
	Reference<CoatingMaterial> inner = scene.add(coatingOver(2), "Inner", 10);
	inner->textures.push_back(VelornTest::textureAt("inner.png"));
	scene.add(blendOf(10, 5), "Outer", 11);
	Reference<SpecularMaterial> summed = scene.add(inMedium<SpecularMaterial>(3), "Summed", 12);
	scene.add(sumOf({UID(12)}, 1), "Sum", 13);

	// Only the outer nodes take the walks; the targets get them from there.
	VisitOperation bind(VisitOperation::Bind, "", "");
	scene.node(11)->doVisit(bind);
	scene.node(13)->doVisit(bind);
	EXPECT_EQ(inner->substrate_material.getPointer(), scene.node(2));
	EXPECT_EQ(summed->internal_medium.getPointer(), scene.root->findMedium(UID(3)));

	VisitOperation dependencies(VisitOperation::GetDependencies, "", "");
	scene.node(11)->doVisit(dependencies);
	EXPECT_EQ(pathsOf(dependencies), std::vector<std::string>{"inner.png"});
}

TEST(MaterialOffsetUIDs, StoredUIDsMoveButTargetsOnlyThroughTheTree)
{
	SceneBuilder scene;
	addTargets(scene);
	TargetHolders m(scene);
	scene.walk(VisitOperation::Bind);
	Reference<SceneNodeMaterial> blend_node = scene.node(10);
	blend_node->scatter_uids = {UID(30)};
	m.blend->b_mat_uid = UID();

	VisitOperation offset(VisitOperation::OffsetUIDs, "", "");
	offset.uid_offset = 100;
	// The sum (13) hands this walk on; it has a test of its own below.
	for(uint32_t uid = 10; uid <= 16; ++uid)
		if(uid != 13)
			scene.node(uid)->doVisit(offset);

	EXPECT_EQ(m.blend->a_mat_uid, UID(102));
	EXPECT_FALSE(m.blend->b_mat_uid.valid());
	EXPECT_EQ(m.coating->substrate_material_uid, UID(105));
	EXPECT_EQ(m.sides->front_material_uid, UID(105));
	EXPECT_EQ(m.sides->back_material_uid, UID(102));
	EXPECT_EQ(m.specular->internal_medium_uid, UID(103));
	EXPECT_EQ(m.glossy->internal_medium_uid, UID(103));
	// The transmitter keeps the UID of its medium.
	EXPECT_EQ(m.transmitter->internal_medium_uid, UID(3));
	// The targets were not handed the walk.
	EXPECT_EQ(m.blend->a_mat->uid, UID(2));
	EXPECT_EQ(m.specular->internal_medium->uid, UID(3));
	// The node's scatter UIDs move too.
	EXPECT_EQ(blend_node->scatter_uids[0], UID(130));
}

TEST(MaterialOffsetUIDs, SumShiftsItsMaterialsInsteadOfItsUIDs)
{
	SceneBuilder scene;
	addTargets(scene);
	TargetHolders m(scene);
	scene.walk(VisitOperation::Bind);

	VisitOperation offset(VisitOperation::OffsetUIDs, "", "");
	offset.uid_offset = 100;
	scene.node(13)->doVisit(offset);
	EXPECT_EQ(m.sum->mat_uids[0], UID(5));
	EXPECT_EQ(m.sum->mat_uids[1], UID(2));
	EXPECT_EQ(m.sum->materials[0]->uid, UID(105));
	EXPECT_EQ(m.sum->materials[1]->uid, UID(102));
}

TEST(MaterialPaths, TexturesThenSharedShaderThenChannelsAreWalked)
{
	Reference<DiffuseMaterial> material(new DiffuseMaterial());
	material->textures = {VelornTest::textureAt("t0.png"), VelornTest::textureAt("t1.png")};
	material->shared_shader_info = VelornTest::shaderUsing("shared.vsl", "shared.png");
	material->albedo = new ShaderWavelengthDependentParam(VelornTest::shaderUsing("albedo.vsl", nullptr));
	material->emission = new TextureWavelengthDependentParam(0);
	material->normal_map = new ShaderVec3Param(VelornTest::shaderUsing(nullptr, "normals.png"));
	Reference<SceneNodeMaterial> node = VelornTest::materialNode(material.getPointer(), "Walked", 1);

	VisitOperation dependencies(VisitOperation::GetDependencies, "", "");
	node->doVisit(dependencies);
	const std::vector<std::string> expected = {"t0.png", "t1.png", "shared.vsl", "shared.png", "albedo.vsl", "normals.png"};
	EXPECT_EQ(pathsOf(dependencies), expected);

	VisitOperation update(VisitOperation::UpdatePaths, "", "");
	for(const std::string& path : expected)
		update.path_map.insert(path, "copy/" + path);
	node->doVisit(update);
	VisitOperation after(VisitOperation::GetDependencies, "", "");
	node->doVisit(after);
	for(size_t i = 0; i < expected.size(); ++i)
		EXPECT_EQ(pathsOf(after)[i], "copy/" + expected[i]);
}

TEST(MaterialPaths, AMissingMappingFailsWithThePath)
{
	Reference<DiffuseMaterial> material(new DiffuseMaterial());
	material->textures = {VelornTest::textureAt("t0.png")};
	Reference<SceneNodeMaterial> node = VelornTest::materialNode(material.getPointer(), "Walked", 1);
	VisitOperation update(VisitOperation::UpdatePaths, "", "");
	EXPECT_EQ(VelornTest::failureOf<VelornException>([&] { node->doVisit(update); }), "While updating dependencies: Missing mapping for old path 't0.png'.");
}
