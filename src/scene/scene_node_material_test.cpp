#include "scene/geometry_test_helpers.h"
#include "scene/material_test_helpers.h"
#include "scene/materials_basic.h"
#include "scene/materials_composite.h"
#include "scene/materials_other.h"
#include "scene/materials_glass.h"
#include "support/exceptions.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Velorn;
using VelornTest::materialNode;
using VelornTest::mediumNode;
using VelornTest::textOf;
using VelornTest::valuesOf;

namespace
{

Reference<SceneNodeMaterial> diffuseNode(const char* name, uint32_t uid, unsigned layer = 0)
{
	DiffuseMaterial* diffuse = new DiffuseMaterial();
	diffuse->layer = layer;
	return materialNode(diffuse, name, uid);
}

Reference<SceneNodeMaterial> displacedNode(const char* name, uint32_t uid)
{
	DiffuseMaterial* diffuse = new DiffuseMaterial();
	diffuse->displacement = new ConstantDisplacementParam(1);
	return materialNode(diffuse, name, uid);
}

BlendMaterial* blendOf(const Reference<SceneNodeMaterial>& a, const Reference<SceneNodeMaterial>& b)
{
	BlendMaterial* blend = new BlendMaterial();
	blend->a_mat = a;
	blend->b_mat = b;
	return blend;
}

SumMaterial* sumOf(const Vector<Reference<SceneNodeMaterial>>& materials)
{
	SumMaterial* sum = new SumMaterial();
	sum->materials = materials;
	for(size_t i = 0; i < materials.size(); ++i)
		sum->weights.push_back(new ConstantWavelengthIndependentParam(1));
	return sum;
}

template <class M>
M* inMedium(const Reference<SceneNodeMedium>& medium)
{
	M* material = new M();
	material->internal_medium = medium;
	return material;
}

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

std::string writeFailure(const SceneNode& node)
{
	return VelornTest::failureOf<VelornException>([&] { textOf(node); });
}

} // namespace

TEST(SceneNodeMaterial, DependencyUIDsComeInTheOrderTheyMustBeWritten)
{
	VelornTest::SceneBuilder scene;
	Reference<SceneNodeMedium> water = scene.addMedium("Water", 3);
	Reference<SpecularMaterial> glass = scene.add(inMedium<SpecularMaterial>(water), "Glass", 4);
	Reference<CoatingMaterial> coating = scene.add(new CoatingMaterial(), "Coating", 5);
	coating->substrate_material = scene.node(4);
	Reference<BlendMaterial> blend = scene.add(blendOf(scene.node(5), scene.node(4)), "Blend", 6);
	VelornTest::addScatter(*scene.root, 30, 50);
	scene.node(6)->scatter_uids = {UID(30)};
	scene.walk(VisitOperation::Bind);
	blend->b_mat = nullptr;
	blend->b_mat_uid = UID(9);

	EXPECT_EQ(valuesOf(scene.node(4)->getDependencyUIDs()), (std::vector<uint32_t>{3}));
	EXPECT_EQ(valuesOf(scene.node(5)->getDependencyUIDs()), (std::vector<uint32_t>{3, 4}));
	// The scatter's dependencies, then the first target's, the first
	// target, and the unbound second target by its stored UID.
	EXPECT_EQ(valuesOf(scene.node(6)->getDependencyUIDs()), (std::vector<uint32_t>{50, 3, 4, 5, 9}));

	blend->b_mat_uid = UID();
	EXPECT_EQ(valuesOf(scene.node(6)->getDependencyUIDs()), (std::vector<uint32_t>{50, 3, 4, 5}));

	Reference<SceneNodeMaterial> sum = materialNode(sumOf({scene.node(5), nullptr, scene.node(4)}), "Sum", 7);
	EXPECT_EQ(valuesOf(sum->getDependencyUIDs()), (std::vector<uint32_t>{3, 4, 5, 3, 4}));

	DoubleSidedThinMaterial* sides = new DoubleSidedThinMaterial();
	sides->front_material_uid = UID(12);
	sides->back_material = scene.node(4);
	EXPECT_EQ(valuesOf(materialNode(sides, "Sides", 8)->getDependencyUIDs()), (std::vector<uint32_t>{12, 3, 4}));
	EXPECT_TRUE(diffuseNode("Plain", 9)->getDependencyUIDs().empty());
}

TEST(SceneNodeMaterial, ReferencesReachThroughTargetsButNotThroughMedia)
{
	Reference<SceneNodeMedium> water = mediumNode("Water", 3);
	Reference<SceneNodeMaterial> glass = materialNode(inMedium<SpecularMaterial>(water), "Glass", 4);
	Reference<SceneNodeMaterial> coating_node = materialNode(new CoatingMaterial(), "Coating", 5);
	coating_node->material.downcast<CoatingMaterial>()->substrate_material = glass;
	Reference<SceneNodeMaterial> blend = materialNode(blendOf(diffuseNode("Red", 2), coating_node), "Blend", 6);
	Reference<SceneNodeMaterial> sum = materialNode(sumOf({nullptr, blend}), "Sum", 7);
	DoubleSidedThinMaterial* sides = new DoubleSidedThinMaterial();
	sides->back_material = glass;
	Reference<SceneNodeMaterial> sides_node = materialNode(sides, "Sides", 8);

	// Targets are looked through, down to their media; a medium is not.
	EXPECT_TRUE(coating_node->references(water.getPointer()));
	EXPECT_TRUE(blend->references(water.getPointer()));
	EXPECT_TRUE(sum->references(glass.getPointer()));
	EXPECT_TRUE(sides_node->references(water.getPointer()));
	EXPECT_FALSE(blend->references(sum.getPointer()));
	EXPECT_FALSE(glass->references(coating_node.getPointer()));
	EXPECT_TRUE(materialNode(inMedium<GlossyTransparent>(water), "Glossy", 9)->references(water.getPointer()));
	EXPECT_TRUE(materialNode(inMedium<DiffuseTransmitter>(water), "Leaf", 10)->references(water.getPointer()));
	EXPECT_FALSE(materialNode(nullptr, "Empty", 12)->references(water.getPointer()));

	VelornTest::SceneBuilder scene;
	scene.root->addChildNode(water);
	scene.root->addChildNode(glass);
	EXPECT_TRUE(scene.root->isReferencedInTree(water.getPointer()));
	EXPECT_FALSE(scene.root->isReferencedInTree(glass.getPointer()));
}

TEST(SceneNodeMaterial, EmissionLayers)
{
	Reference<SceneNodeMaterial> low = diffuseNode("Low", 2, 1);
	Reference<SceneNodeMaterial> high = diffuseNode("High", 3, 3);
	SunSkyMaterial* sky = new SunSkyMaterial();
	sky->sun_layer = 1;
	sky->sky_layer = 4;
	PluginMaterial* plugin = new PluginMaterial();
	plugin->layer = 6;
	CoatingMaterial* coating = new CoatingMaterial();
	coating->layer = 2;
	coating->substrate_material = high;

	EXPECT_EQ(low->getHighestEmissionLayer(), 1u);
	EXPECT_EQ(materialNode(blendOf(high, low), "Blend", 4)->getHighestEmissionLayer(), 3u);
	EXPECT_EQ(materialNode(blendOf(nullptr, low), "Blend", 5)->getHighestEmissionLayer(), 1u);
	EXPECT_EQ(materialNode(sumOf({low, nullptr, high}), "Sum", 6)->getHighestEmissionLayer(), 3u);
	EXPECT_EQ(materialNode(sky, "Sky", 7)->getHighestEmissionLayer(), 4u);
	EXPECT_EQ(materialNode(plugin, "Plugin", 8)->getHighestEmissionLayer(), 6u);
	// A coating's own layer counts, not its substrate's.
	EXPECT_EQ(materialNode(coating, "Coating", 9)->getHighestEmissionLayer(), 2u);
	EXPECT_EQ(materialNode(nullptr, "Empty", 11)->getHighestEmissionLayer(), 0u);
}

TEST(SceneNodeMaterial, Displacement)
{
	Reference<SceneNodeMaterial> plain = diffuseNode("Plain", 2);
	Reference<SceneNodeMaterial> displaced = displacedNode("Displaced", 3);
	Reference<DiffuseMaterial> bumped(new DiffuseMaterial());
	bumped->bump = new ConstantDisplacementParam(1);
	Reference<CoatingMaterial> coating(new CoatingMaterial());
	coating->substrate_material = displaced;
	Reference<PhongMaterial> phong(new PhongMaterial());
	phong->displacement = new TextureDisplacementParam(0);

	EXPECT_FALSE(bumped->hasDisplacement());
	EXPECT_TRUE(phong->hasDisplacement());
	const std::pair<Reference<Material>, bool> composites[] = {
		{blendOf(plain, displaced), true},
		{blendOf(displaced, nullptr), true},
		{blendOf(plain, materialNode(nullptr, "Empty", 4)), false},
		{sumOf({plain, nullptr, displaced}), true},
		{sumOf({plain}), false},
	};
	for(const std::pair<Reference<Material>, bool>& composite : composites)
		EXPECT_EQ(composite.first->hasDisplacement(), composite.second) << composite.first->getTypeName();
	// Only the blend and the sum look at their targets.
	EXPECT_FALSE(coating->hasDisplacement());
	EXPECT_FALSE(SunSkyMaterial().hasDisplacement());
}

TEST(SceneNodeMaterial, UpdateReferencesTakesReplacementsOfTheRightType)
{
	Reference<SceneNodeMedium> water = mediumNode("Water", 3);
	Reference<SceneNodeMaterial> red = diffuseNode("Red", 2);
	Reference<SceneNodeMaterial> blend = materialNode(blendOf(red, nullptr), "Blend", 6);
	blend->material.downcast<BlendMaterial>()->b_mat_uid = UID(5);
	Reference<SceneNodeMaterial> coating = materialNode(new CoatingMaterial(), "Coating", 7);
	coating->material.downcast<CoatingMaterial>()->substrate_material = red;
	DoubleSidedThinMaterial* sides = new DoubleSidedThinMaterial();
	sides->front_material = red;
	sides->back_material = red;
	Reference<SceneNodeMaterial> sides_node = materialNode(sides, "Sides", 8);
	Reference<SceneNodeMaterial> glass = materialNode(inMedium<SpecularMaterial>(water), "Glass", 9);
	Reference<SceneNodeMaterial> glossy = materialNode(inMedium<GlossyTransparent>(water), "Glossy", 10);
	Reference<SceneNodeMaterial> leaf = materialNode(inMedium<DiffuseTransmitter>(water), "Leaf", 11);

	Reference<SceneNodeMaterial> new_red = diffuseNode("New red", 2);
	Reference<SceneNodeMaterial> new_blue = diffuseNode("New blue", 5);
	Reference<SceneNodeMedium> new_water = mediumNode("New water", 3);
	SceneNodeMap map;
	map.insert(UID(2), new_red);
	map.insert(UID(5), new_blue);
	map.insert(UID(3), new_water);
	const Reference<SceneNodeMaterial> nodes[] = {blend, coating, sides_node, glass, glossy, leaf, diffuseNode("Plain", 12)};
	for(const Reference<SceneNodeMaterial>& node : nodes)
		node->updateReferences(map);

	EXPECT_EQ(blend->material.downcast<BlendMaterial>()->a_mat, new_red);
	EXPECT_EQ(blend->material.downcast<BlendMaterial>()->b_mat, new_blue);
	EXPECT_EQ(coating->material.downcast<CoatingMaterial>()->substrate_material, new_red);
	EXPECT_EQ(sides->back_material, new_red);
	EXPECT_EQ(glass->material.downcast<SpecularMaterial>()->internal_medium, new_water);
	EXPECT_EQ(glossy->material.downcast<GlossyTransparent>()->internal_medium, new_water);
	EXPECT_EQ(leaf->material.downcast<DiffuseTransmitter>()->internal_medium, new_water);

	// A node of the wrong type under the UID is not taken.
	SceneNodeMap wrong;
	wrong.insert(UID(2), mediumNode("Not a material", 2));
	wrong.insert(UID(3), diffuseNode("Not a medium", 3));
	for(const Reference<SceneNodeMaterial>& node : nodes)
		node->updateReferences(wrong);
	EXPECT_EQ(coating->material.downcast<CoatingMaterial>()->substrate_material, new_red);
	EXPECT_EQ(glass->material.downcast<SpecularMaterial>()->internal_medium, new_water);
}

TEST(SceneNodeMaterial, NamesAndClone)
{
	Reference<SceneNodeMaterial> node = materialNode(new PhongMaterial(), "Shiny", 4);
	EXPECT_EQ(node->material->name, "Shiny");
	EXPECT_TRUE(node->name.empty());
	node->flags = 2;
	node->change_stamp = 9;

	// The copy gets a new default material, not a copy of the original's.
	Reference<SceneNodeMaterial> copy = node->clone().downcast<SceneNodeMaterial>();
	ASSERT_TRUE(copy.nonNull());
	EXPECT_EQ(copy->getName(), "Shiny");
	EXPECT_EQ(copy->flags, 2u);
	EXPECT_EQ(copy->change_stamp, 9u);
	EXPECT_EQ(copy->material->getType(), MaterialType::Diffuse);
	EXPECT_NE(copy->material, node->material);

	Reference<SceneNodeMaterial> empty(new SceneNodeMaterial(nullptr));
	empty->setName("Own name");
	EXPECT_EQ(empty->getName(), "Own name");
	EXPECT_EQ(SceneNodeMaterial().getName(), "Material");
}

TEST(SceneNodeMedium, NamesAndClone)
{
	Reference<SceneNodeMedium> node = mediumNode("Water", 3);
	Reference<SceneNodeMedium> copy = node->clone().downcast<SceneNodeMedium>();
	ASSERT_TRUE(copy.nonNull());
	EXPECT_EQ(copy->getName(), "Water");
	EXPECT_NE(copy->medium, node->medium);
	EXPECT_EQ(SceneNodeMedium().getName(), "Medium");

	Reference<SceneNodeMedium> empty(new SceneNodeMedium(nullptr));
	empty->setName("Own name");
	EXPECT_EQ(empty->getName(), "Own name");
}

TEST(MaterialWriting, SumFailsOnItsCountsAndOnAMissingWeight)
{
	SumMaterial* uneven = sumOf({diffuseNode("Red", 2)});
	uneven->weights.push_back(new ConstantWavelengthIndependentParam(1));
	EXPECT_EQ(writeFailure(*materialNode(uneven, "Uneven", 5)), "num materials != num weights.");

	SumMaterial* weightless = sumOf({diffuseNode("Red", 2), diffuseNode("Blue", 3)});
	weightless->weights[1] = nullptr;
	EXPECT_EQ(writeFailure(*materialNode(weightless, "Weightless", 6)), "Weight was null.");
}

// By name, an unbound substrate has nothing to write.
TEST(MaterialWriting, AnUnboundCoatingWritesNoSubstrateByName)
{
	CoatingMaterial* coating = new CoatingMaterial();
	coating->substrate_material_uid = UID(2);
	EXPECT_FALSE(contains(textOf(*materialNode(coating, "Coating", 5), false), "substrate_material"));
}

TEST(MaterialWriting, OptionalPartsAreLeftOut)
{
	DiffuseMaterial* textures_only = new DiffuseMaterial();
	textures_only->shared_shader_info = new ShaderInfo();
	Texture texture;
	texture.path = "t.png";
	textures_only->shared_shader_info->textures.push_back(texture);
	EXPECT_FALSE(contains(textOf(*materialNode(textures_only, "Textures only", 1)), "shared_shader_info"));
	EXPECT_FALSE(contains(textOf(*materialNode(new DiffuseTransmitter(), "Leaf", 3)), "internal_medium"));
}
