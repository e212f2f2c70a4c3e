#include "c4d/uv_projection.h"

#include "c4d/base_document.h"
#include "c4d/geometry_test_helpers.h"
#include "c4d/primitives.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{

Owned<UVWTag> project(const PolygonObject& op, int32_t projection, const Matrix& opmg, const Matrix& texopmg)
{
	Owned<TextureTag> tag(TextureTag::Alloc());
	tag->GetDataInstance()->SetInt32(TEXTURETAG_PROJECTION, projection);
	return Owned<UVWTag>(GenerateUVW(&op, opmg, tag.get(), texopmg));
}

// Compares the records of polygons from the first on with the (u, v) pairs
// of their corners a, b, c, d.
void expectUVs(const UVWTag* uvw, const std::vector<std::array<double, 8>>& expected, int32_t first = 0)
{
	ASSERT_TRUE(uvw);
	for(size_t i = 0; i < expected.size(); ++i)
	{
		const UVWStruct& r = uvw->Get(first + (int32_t)i);
		const Vector corners[] = {r.a, r.b, r.c, r.d};
		for(int32_t k = 0; k < 4; ++k)
			EXPECT_TRUE(isNear(corners[k], Vector(expected[i][2 * k], expected[i][2 * k + 1], 0))) << i << " " << k;
	}
}

// Whether two tags hold the same records.
void expectSameUVs(const UVWTag* a, const UVWTag* b)
{
	ASSERT_TRUE(a && b);
	ASSERT_EQ(a->GetDataCount(), b->GetDataCount());
	for(int32_t i = 0; i < a->GetDataCount(); ++i)
		expectUVs(a, {{b->Get(i).a.x, b->Get(i).a.y, b->Get(i).b.x, b->Get(i).b.y, b->Get(i).c.x, b->Get(i).c.y,
						  b->Get(i).d.x, b->Get(i).d.y}},
			i);
}

} // namespace

TEST(GenerateUVW, FlatSpatialAndCylindricalOnKnownPoints)
{
	// In the projection's space (100 wide at x = 10, 50 high and deep, the
	// object 5 along z) the points are (0.5, 0.5, 0.1), (-0.5, -1, 0.1),
	// (0, 0, 0.1) and (0, 0, 0.5).
	Owned<PolygonObject> op = makePolygonObject(
		{Vector(60, 25, 0), Vector(-40, -50, 0), Vector(10, 0, 0), Vector(10, 0, 20)}, {CPolygon(0, 1, 2, 3)});
	const Matrix opmg(Vector(0, 0, 5), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1));
	const Matrix texopmg(Vector(10, 0, 0), Vector(100, 0, 0), Vector(0, 50, 0), Vector(0, 0, 50));
	expectUVs(project(*op, TEXTURETAG_PROJECTION_FLAT, opmg, texopmg).get(), {{0.75, 0.25, 0.25, 1, 0.5, 0.5, 0.5, 0.5}});
	// Spatial: u + z / 2, v + z / 2.
	expectUVs(project(*op, TEXTURETAG_PROJECTION_SPATIAL, opmg, texopmg).get(), {{0.8, 0.3, 0.3, 1.05, 0.55, 0.55, 0.75, 0.75}});

	// Cylindrical: u 0.5 facing -z, 0.75 at +x, 0.25 at -x; the corner on the
	// axis takes the mean u of the others; v runs down the height.
	Owned<PolygonObject> around = makePolygonObject(
		{Vector(0, 0.5, -3), Vector(3, -1, 0), Vector(-2, 0, 0), Vector(0, 2, 0)}, {CPolygon(0, 1, 2, 3)});
	expectUVs(project(*around, TEXTURETAG_PROJECTION_CYLINDRICAL, Matrix(), Matrix()).get(),
		{{0.5, 0.25, 0.75, 1, 0.25, 0.5, 0.5, -0.5}});
}

TEST(GenerateUVW, SphericalAcrossTheSeamAndAtThePoles)
{
	// Near the seam at +z, u is 1 - e on the +x side and e on the other; the
	// polygon across the seam takes 1 + e there, and its pole the mean.
	const double e = std::atan(0.1) / (2 * M_PI);
	Owned<PolygonObject> op = makePolygonObject({Vector(0, 2, 0), Vector(2, 0, 0), Vector(0, 0, -2), Vector(-1, 1, 0),
													Vector(0.1, 0, 1), Vector(-0.1, 0, 1), Vector(0, -1, 0)},
		{CPolygon(0, 1, 2), CPolygon(4, 5, 6), CPolygon(3, 2, 1)});
	// The projection's size does not matter.
	const Matrix texopmg(Vector(), Vector(7, 0, 0), Vector(0, 7, 0), Vector(0, 0, 7));
	expectUVs(project(*op, TEXTURETAG_PROJECTION_SPHERICAL, Matrix(), texopmg).get(),
		{{0.625, 0, 0.75, 0.5, 0.5, 0.5, 0.5, 0.5}, {1 - e, 0.5, 1 + e, 0.5, 1, 1, 1, 1},
			{0.25, 0.25, 0.5, 0.5, 0.75, 0.5, 0.75, 0.5}});

	// On the host's own sphere spherical mapping gives the sphere's UVs.
	Owned<BaseObject> generator(BaseObject::Alloc(Osphere));
	Owned<PolygonObject> sphere(BuildPrimitive(*generator));
	expectSameUVs(project(*sphere, TEXTURETAG_PROJECTION_SPHERICAL, Matrix(), Matrix()).get(),
		static_cast<const UVWTag*>(sphere->GetTag(Tuvw)));
}

TEST(GenerateUVW, CubicMapsEachSideUprightSeenFromOutside)
{
	// Sides of a cube of half-size 1 facing +x, -x, +y (seen with +z up) and
	// -z, each clockwise seen from outside from its lower left corner.
	Owned<PolygonObject> op = makePolygonObject({Vector(1, -1, -1), Vector(1, 1, -1), Vector(1, 1, 1), Vector(1, -1, 1),
													Vector(-1, -1, 1), Vector(-1, 1, 1), Vector(-1, 1, -1), Vector(-1, -1, -1)},
		{CPolygon(0, 1, 2, 3), CPolygon(4, 5, 6, 7), CPolygon(6, 5, 2, 1), CPolygon(7, 6, 1, 0)});
	const std::array<double, 8> upright = {0, 1, 0, 0, 1, 0, 1, 1};
	expectUVs(project(*op, TEXTURETAG_PROJECTION_CUBIC, Matrix(), Matrix()).get(), {upright, upright, upright, upright});

	// The host's cube, mapped by a projection of its own size, keeps its UVs.
	Owned<BaseObject> generator(BaseObject::Alloc(Ocube));
	Owned<PolygonObject> cube(BuildPrimitive(*generator));
	const Matrix size(Vector(), Vector(100, 0, 0), Vector(0, 100, 0), Vector(0, 0, 100));
	expectSameUVs(project(*cube, TEXTURETAG_PROJECTION_CUBIC, Matrix(), size).get(),
		static_cast<const UVWTag*>(cube->GetTag(Tuvw)));
}

TEST(GenerateUVW, FrontalLooksThroughTheDocumentsCamera)
{
	Owned<BaseDocument> doc(BaseDocument::Alloc());
	BaseObject* camera = BaseObject::Alloc(Ocamera);
	camera->SetMl(Matrix(Vector(0, 0, -100), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)));
	doc->InsertObject(camera, nullptr, nullptr);
	PolygonObject* op = makePolygonObject(
		{Vector(25, 15, 0), Vector(0, 0, 0), Vector(0, 0, -200), Vector(-25, 0, 100)}, {CPolygon(0, 1, 2, 3)}).release();
	doc->InsertObject(op, nullptr, camera);
	// Without an active camera, flat mapping by the tag.
	expectUVs(project(*op, TEXTURETAG_PROJECTION_FRONTAL, op->GetMg(), Matrix()).get(),
		{{13, -7, 0.5, 0.5, 0.5, 0.5, -12, 0.5}});
	doc->SetActiveCamera(camera);
	// The default lens sees 36 mm film from 36 mm: half the width at depth d
	// is d / 2, and at 800 by 600 pixels half the height is 3/4 of that. A
	// point behind the camera takes the middle.
	expectUVs(project(*op, TEXTURETAG_PROJECTION_FRONTAL, op->GetMg(), Matrix()).get(),
		{{0.75, 0.3, 0.5, 0.5, 0.5, 0.5, 0.375, 0.5}});
	doc->SetActiveCamera(nullptr);
}

TEST(GenerateUVW, UVWCopiesAndRefusals)
{
	Owned<PolygonObject> op = makePolygonObject(
		{Vector(0, 0, 0), Vector(0, 1, 0), Vector(1, 1, 0)}, {CPolygon(0, 1, 2), CPolygon(0, 2, 1, 9)});
	EXPECT_FALSE(project(*op, TEXTURETAG_PROJECTION_UVW, Matrix(), Matrix()));
	UVWTag* own = UVWTag::Alloc(1);
	own->Set(0, {Vector(0.1, 0.2, 0), Vector(0.3, 0.4, 0), Vector(0.5, 0.6, 0), Vector(0.5, 0.6, 0)});
	op->InsertTag(own);
	// One record per polygon: the tag's, then zeros. A polygon whose corner
	// is no point keeps zeros under a projection too.
	expectUVs(project(*op, TEXTURETAG_PROJECTION_UVW, Matrix(), Matrix()).get(),
		{{0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.5, 0.6}, {0, 0, 0, 0, 0, 0, 0, 0}});
	expectUVs(project(*op, TEXTURETAG_PROJECTION_FLAT, Matrix(), Matrix()).get(), {{0.5, 0.5, 0.5, 0, 1, 0, 1, 0}, {}});

	Owned<TextureTag> tag(TextureTag::Alloc());
	tag->GetDataInstance()->SetInt32(TEXTURETAG_PROJECTION, TEXTURETAG_PROJECTION_FLAT);
	Owned<BaseObject> group(BaseObject::Alloc(Onull));
	EXPECT_EQ(GenerateUVW(nullptr, Matrix(), tag.get(), Matrix()), nullptr);
	EXPECT_EQ(GenerateUVW(group.get(), Matrix(), tag.get(), Matrix()), nullptr);
	EXPECT_EQ(GenerateUVW(Owned<PolygonObject>(PolygonObject::Alloc(3, 0)).get(), Matrix(), tag.get(), Matrix()), nullptr);
	EXPECT_EQ(GenerateUVW(op.get(), Matrix(), nullptr, Matrix()), nullptr);
	EXPECT_EQ(GenerateUVW(op.get(), Matrix(), tag.get(), Matrix(Vector(), Vector(1, 0, 0), Vector(0, 1, 0), Vector())), nullptr);
	tag->GetDataInstance()->SetInt32(TEXTURETAG_PROJECTION, 7);
	EXPECT_EQ(GenerateUVW(op.get(), Matrix(), tag.get(), Matrix()), nullptr);
}
