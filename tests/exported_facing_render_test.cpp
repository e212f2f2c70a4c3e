// Documents exported through the plug-in's scene exporter and traced by the
// stand-in renderer: the side of a polygon that the host takes as its front
// is the front in the renderer too.

#include "export/export_test_helpers.h"

#include "c4d/light_object.h"
#include "c4d/primitives.h"
#include "standin/tracer_scene.h"

#include <vector>

using Velorn::Standin::V3;

namespace
{

Matrix at(double x, double y, double z)
{
	Matrix m;
	m.off = Vector(x, y, z);
	return m;
}

// The mean light (over the colour channels) that comes back along a ray,
// from a fixed sequence of paths.
float meanRadiance(const Velorn::Standin::TracerScene& scene, const V3& origin, const V3& dir)
{
	const int paths = 256;
	std::vector<V3> layers;
	V3 sum;
	for(int i = 0; i < paths; ++i)
	{
		Velorn::Standin::Rng rng(4711, (uint64_t)i);
		layers.assign(1, V3());
		bool hit = false;
		scene.radiance(Velorn::Standin::Ray{origin, dir}, rng, layers, hit);
		sum += layers[0];
	}
	return sum.average() / paths;
}

} // namespace

TEST_F(ExportTest, AreaLightShinesAlongItsZAxisOnly)
{
	// A square area light of 1 m at the origin with the host light's own
	// axes, so shining along the host's +z, between two cubes of 1 m whose
	// near faces stand 0.5 m from it: one ahead of the light, one behind it.
	TestDocument doc;
	BaseObject* light = BaseObject::Alloc(Olight);
	BaseContainer& data = *light->GetDataInstance();
	data.SetInt32(LIGHT_TYPE, LIGHT_TYPE_AREA);
	data.SetInt32(LIGHT_AREADEFINITION_SHAPE, LIGHT_AREADEFINITION_SHAPE_RECTANGLE);
	data.SetFloat(LIGHT_AREADEFINITION_SIZEX, 100);
	data.SetFloat(LIGHT_AREADEFINITION_SIZEY, 100);
	doc.doc->InsertObject(light, nullptr, nullptr);
	for(const double z : {150.0, -150.0})
	{
		BaseObject* cube = BaseObject::Alloc(Ocube);
		cube->GetDataInstance()->SetVector(PRIM_CUBE_LEN, Vector(100, 100, 100));
		cube->SetMl(at(0, 0, z));
		doc.doc->InsertObject(cube, nullptr, nullptr);
	}
	doc.doc->ExecutePasses(nullptr, true, true, true, 0);
	const Velorn::Reference<Velorn::SceneNodeRoot> root = doc.exportScene(4, 4);
	// Without render settings the world glows white; the light is to be
	// the only one.
	for(const Velorn::Reference<Velorn::SceneNode>& child : root->getChildren())
		if(child->getType() == Velorn::SceneNodeType::BackgroundSettings)
		{
			root->removeChildNode(child);
			break;
		}
	root->finalise(Velorn::String("/scenes/test.vls"));
	const Velorn::Standin::TracerScene scene(*root, ".");

	// In the scene, metres with z up, the host's +z is +y. Rays start
	// halfway between the light and a cube.
	const V3 ahead(0, 0.5f, 0), behind(0, -0.5f, 0), towards_ahead(0, 1, 0), towards_behind(0, -1, 0);
	const float lit_face = meanRadiance(scene, ahead, towards_ahead);
	const float unlit_face = meanRadiance(scene, behind, towards_behind);
	const float light_front = meanRadiance(scene, ahead, towards_behind);
	const float light_back = meanRadiance(scene, behind, towards_ahead);
	// The cube behind could get light only by bounces round the light's
	// edges; the light's back sees only that cube and the dark world.
	EXPECT_GT(lit_face, 0.05f);
	EXPECT_GT(lit_face, 20 * unlit_face);
	EXPECT_GT(light_front, 0.5f);
	EXPECT_GT(light_front, 20 * light_back);
}
