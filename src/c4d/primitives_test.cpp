#include "c4d/primitives.h"

#include "c4d/geometry_test_helpers.h"
#include "c4d/instance_object.h"
#include "c4d/variable_tags.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

TEST(Primitives, CountsExtentsFacingAndTags)
{
	const auto plane = [](int32_t axis) {
		return [axis](BaseContainer& d) {
			d.SetFloat(PRIM_PLANE_WIDTH, 40);
			d.SetFloat(PRIM_PLANE_HEIGHT, 60);
			d.SetInt32(PRIM_PLANE_SUBW, 2);
			d.SetInt32(PRIM_PLANE_SUBH, 3);
			d.SetInt32(PRIM_AXIS, axis);
		};
	};
	// A zero facing means that every polygon faces away from the centre.
	const struct
	{
		const char* name;
		int32_t type;
		std::function<void(BaseContainer&)> set;
		int32_t points, polygons;
		Vector min, max, facing;
	} cases[] = {
		{"sphere", Osphere, nullptr, 266, 288, {-100, -100, -100}, {100, 100, 100}, {}},
		{"hemisphere", Osphere, [](BaseContainer& d) { d.SetInt32(PRIM_SPHERE_TYPE, 5); }, 145, 144, {-100, 0, -100},
			{100, 100, 100}, {}},
		{"octahedron as sphere", Osphere, [](BaseContainer& d) { d.SetInt32(PRIM_SPHERE_TYPE, 3); }, 266, 288,
			{-100, -100, -100}, {100, 100, 100}, {}},
		{"box", Ocube, [](BaseContainer& d) { d.SetVector(PRIM_CUBE_LEN, Vector(10, 20, 30)); }, 8, 6, {-5, -10, -15},
			{5, 10, 15}, {}},
		{"plane +y", Oplane, plane(PRIM_AXIS_YP), 12, 6, {-20, 0, -30}, {20, 0, 30}, {0, 1, 0}},
		{"plane +z", Oplane, plane(PRIM_AXIS_ZP), 12, 6, {-20, -30, 0}, {20, 30, 0}, {0, 0, 1}},
		{"plane -x", Oplane, plane(PRIM_AXIS_XN), 12, 6, {0, -20, -30}, {0, 20, 30}, {-1, 0, 0}},
		{"disc +z of 2 rings", Odisc,
			[](BaseContainer& d) {
				d.SetInt32(PRIM_DISC_SUB, 2);
				d.SetInt32(PRIM_DISC_CSUB, 8);
				d.SetInt32(PRIM_AXIS, PRIM_AXIS_ZP);
			},
			17, 16, {-100, -100, 0}, {100, 100, 0}, {0, 0, 1}},
		{"cylinder", Ocylinder, nullptr, 146, 108, {-50, -100, -50}, {50, 100, 50}, {}},
		{"cylinder +x", Ocylinder, [](BaseContainer& d) { d.SetInt32(PRIM_AXIS, PRIM_AXIS_XP); }, 146, 108,
			{-100, -50, -50}, {100, 50, 50}, {}},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.name);
		Owned<BaseObject> source(BaseObject::Alloc(t.type));
		if(t.set)
			t.set(*source->GetDataInstance());
		source->SetName(String("Prim"));
		Owned<PolygonObject> op(BuildPrimitive(*source));
		ASSERT_TRUE(op);
		EXPECT_EQ(op->GetName(), String("Prim"));
		ASSERT_EQ(op->GetPointCount(), t.points);
		ASSERT_EQ(op->GetPolygonCount(), t.polygons);
		const Vector* p = op->GetPointR();
		Vector min = p[0], max = p[0];
		for(int32_t i = 0; i < op->GetPointCount(); ++i)
		{
			min = Vector(std::min(min.x, p[i].x), std::min(min.y, p[i].y), std::min(min.z, p[i].z));
			max = Vector(std::max(max.x, p[i].x), std::max(max.y, p[i].y), std::max(max.z, p[i].z));
		}
		EXPECT_TRUE(isNear(min, t.min));
		EXPECT_TRUE(isNear(max, t.max));
		// Quarter turns are exact, as the points must not depend on how the
		// platform's C library rounds near a multiple of pi: no coordinate
		// is a tiny remainder instead of 0.
		for(int32_t i = 0; i < op->GetPointCount(); ++i)
			for(const double c : {p[i].x, p[i].y, p[i].z})
				EXPECT_FALSE(c != 0 && std::abs(c) < 1e-9) << "point " << i << ": " << c;
		for(int32_t i = 0; i < op->GetPolygonCount(); ++i)
		{
			const CPolygon& v = op->GetPolygonR()[i];
			const Vector n = CalcFaceNormal(p, v);
			if(t.facing == Vector())
				EXPECT_GT(Dot(n, p[v.a] + p[v.b] + p[v.c]), 0) << "polygon " << i;
			else
				EXPECT_TRUE(isNear(n, t.facing)) << "polygon " << i;
		}
		// The tags of a primitive's cache: its UVs and smoothing up to 80 degrees.
		const UVWTag* uvw = dynamic_cast<const UVWTag*>(op->GetTag(Tuvw));
		const BaseTag* phong = op->GetTag(Tphong);
		ASSERT_TRUE(uvw && phong);
		EXPECT_DOUBLE_EQ(phong->GetDataInstance()->GetFloat(PHONGTAG_PHONG_ANGLE), 80 * M_PI / 180);
		EXPECT_EQ(uvw->GetDataCount(), t.polygons);
	}
}

TEST(Primitives, CurrentStateToObjectCopiesTheCacheWithTheObjectsTags)
{
	Owned<BaseObject> sphere(BaseObject::Alloc(Osphere));
	sphere->SetName(String("Ball"));
	sphere->SetMl(Matrix(Vector(1, 2, 3), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)));
	sphere->MakeTag(Ttexture)->SetName(String("paint"));
	// Without a cache the generator is run for the conversion.
	EXPECT_EQ(Owned<PolygonObject>(CurrentStateToObject(*sphere))->GetPointCount(), 266);

	PolygonObject* cache = BuildPrimitive(*sphere);
	cache->GetPointW()[0] = Vector(0, 101, 0);
	sphere->SetCache(cache);
	Owned<PolygonObject> copy(CurrentStateToObject(*sphere));
	ASSERT_TRUE(copy);
	EXPECT_EQ(copy->GetName(), String("Ball"));
	EXPECT_EQ(copy->GetMl(), sphere->GetMl());
	ASSERT_EQ(copy->GetPolygonCount(), cache->GetPolygonCount());
	EXPECT_EQ(copy->GetPointR()[0], Vector(0, 101, 0));
	EXPECT_TRUE(std::equal(cache->GetPolygonR(), cache->GetPolygonR() + cache->GetPolygonCount(), copy->GetPolygonR()));
	// The object's tags first, then the cache's.
	const BaseTag* tag = copy->GetFirstTag();
	ASSERT_TRUE(tag && tag->GetNext() && tag->GetNext()->GetNext());
	EXPECT_EQ(tag->GetName(), String("paint"));
	EXPECT_NE(tag, sphere->GetFirstTag());
	EXPECT_EQ(tag->GetNext()->GetType(), Tphong);
	const UVWTag* uvw = dynamic_cast<const UVWTag*>(tag->GetNext()->GetNext());
	ASSERT_TRUE(uvw && uvw->GetDataCount() == 288);
	EXPECT_EQ(uvw->Get(30).b, static_cast<const UVWTag*>(cache->GetTag(Tuvw))->Get(30).b);

	// The object's own Phong tag stands for the cache's; a deform cache
	// comes before the cache.
	sphere->MakeTag(Tphong);
	EXPECT_EQ(Owned<PolygonObject>(CurrentStateToObject(*sphere))->GetTag(Tphong, 1), nullptr);
	sphere->SetDeformCache(makePolygonObject({Vector(), Vector(1, 0, 0), Vector(0, 1, 0)}, {CPolygon(0, 1, 2)}).release());
	Owned<PolygonObject> deformed(CurrentStateToObject(*sphere));
	EXPECT_EQ(deformed->GetPolygonCount(), 1);
	// A polygon object is copied; a group without polygons is refused.
	EXPECT_NE(Owned<PolygonObject>(CurrentStateToObject(*deformed))->GetTag(Ttexture), nullptr);
	Owned<BaseObject> group(BaseObject::Alloc(Onull));
	EXPECT_EQ(CurrentStateToObject(*group), nullptr);
	EXPECT_EQ(BuildPrimitive(*group), nullptr);
}

TEST(Primitives, HostObjectTypes)
{
	EXPECT_TRUE(IsPrimitiveType(Ocylinder));
	EXPECT_FALSE(IsPrimitiveType(Opolygon));
	// Floor and sky only make sense for one view.
	EXPECT_EQ(Owned<BaseObject>(BaseObject::Alloc(Ofloor))->GetInfo(), OBJECT_CAMERADEPENDENT);
	EXPECT_EQ(Owned<BaseObject>(BaseObject::Alloc(Osky))->GetInfo(), OBJECT_CAMERADEPENDENT);
	EXPECT_EQ(Owned<BaseObject>(BaseObject::Alloc(Onull))->GetInfo(), 0);
	EXPECT_TRUE(Owned<BaseObject>(BaseObject::Alloc(Oskipped)));
	Owned<BaseObject> instance(BaseObject::Alloc(Oinstance));
	EXPECT_EQ(instance->GetDataInstance()->GetData(INSTANCEOBJECT_LINK).GetType(), DA_ALIASLINK);
	EXPECT_FALSE(instance->GetDataInstance()->GetBool(INSTANCEOBJECT_RENDERINSTANCE, true));
}
