#include "c4d/polygon_object.h"

#include "c4d/geometry_test_helpers.h"
#include "c4d/primitives.h"
#include "c4d/variable_tags.h"

#include <gtest/gtest.h>

#include <cmath>

TEST(PolygonObject, ResizeKeepsLeadingElements)
{
	PolygonObject* op = static_cast<PolygonObject*>(BaseObject::Alloc(Opolygon));
	ASSERT_EQ(op->GetType(), Opolygon);
	ASSERT_TRUE(op->ResizeObject(4, 2));
	Vector* points = op->GetPointW();
	for(int32_t i = 0; i < 4; ++i)
		points[i] = Vector(i, 0, 0);
	op->GetPolygonW()[0] = CPolygon(0, 1, 2, 3);
	op->GetPolygonW()[1] = CPolygon(0, 2, 3);
	EXPECT_TRUE(op->GetPolygonR()[1].IsTriangle());
	EXPECT_FALSE(op->GetPolygonR()[0].IsTriangle());
	const struct
	{
		int32_t pcnt, vcnt;
		bool ok;
		int32_t points, polygons;
		Vector lastPoint;
		CPolygon lastPolygon;
	} steps[] = {
		{6, 3, true, 6, 3, Vector(), CPolygon()},
		{3, 1, true, 3, 1, Vector(2, 0, 0), CPolygon(0, 1, 2, 3)},
		{-1, 5, false, 3, 1, Vector(2, 0, 0), CPolygon(0, 1, 2, 3)},
		{2, -1, false, 3, 1, Vector(2, 0, 0), CPolygon(0, 1, 2, 3)},
	};
	for(const auto& s : steps)
	{
		SCOPED_TRACE(testing::Message() << s.pcnt << " " << s.vcnt);
		EXPECT_EQ(op->ResizeObject(s.pcnt, s.vcnt), s.ok);
		ASSERT_EQ(op->GetPointCount(), s.points);
		ASSERT_EQ(op->GetPolygonCount(), s.polygons);
		EXPECT_EQ(op->GetPointR()[0], Vector());
		EXPECT_EQ(op->GetPointR()[s.points - 1], s.lastPoint);
		EXPECT_EQ(op->GetPolygonR()[s.polygons - 1], s.lastPolygon);
	}
	ASSERT_TRUE(op->ResizeObject(0, 0));
	EXPECT_EQ(op->GetPointCount(), 0);
	BaseObject::Free(op);
	EXPECT_EQ(PolygonObject::Alloc(-1, 0), nullptr);
}

TEST(PolygonObject, PhongNormalsFollowTheAngleLimit)
{
	// Two quads share the edge (0, 0, 0) to (0, 0, 1) (their corners b and
	// c). The first faces -y; the second, the first mirrored and turned 60
	// degrees about z, faces (sin 60, -cos 60, 0). Smoothed, the edge takes
	// the direction between them.
	const double c = 0.5, s = std::sqrt(3.0) / 2;
	Owned<PolygonObject> op = makePolygonObject(
		{Vector(-1, 0, 0), Vector(0, 0, 0), Vector(0, 0, 1), Vector(-1, 0, 1), Vector(c, s, 1), Vector(c, s, 0)},
		{CPolygon(0, 1, 2, 3), CPolygon(4, 2, 1, 5)});
	EXPECT_TRUE(op->CreatePhongNormals().empty());
	BaseContainer* phong = op->MakeTag(Tphong)->GetDataInstance();
	const Vector first(0, -1, 0), second(s, -c, 0), between(c, -s, 0);
	const struct
	{
		bool limit;
		double degrees;
		bool smooth;
	} cases[] = {{true, 80, true}, {true, 45, false}, {true, 60, true}, {false, 10, true}};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(testing::Message() << t.limit << " " << t.degrees);
		phong->SetBool(PHONGTAG_PHONG_ANGLELIMIT, t.limit);
		phong->SetFloat(PHONGTAG_PHONG_ANGLE, t.degrees * M_PI / 180);
		const std::vector<Vector> n = op->CreatePhongNormals();
		ASSERT_EQ(n.size(), 8u);
		const Vector expected[] = {first, t.smooth ? between : first, t.smooth ? between : first, first, second,
			t.smooth ? between : second, t.smooth ? between : second, second};
		for(int32_t k = 0; k < 8; ++k)
			EXPECT_TRUE(isNear(n[k], expected[k])) << "corner " << k;
	}

	// A triangle clockwise seen from -z faces -z, d as c; a degenerate quad
	// and one with a corner that is no point get zeros and change nothing.
	Owned<PolygonObject> tri = makePolygonObject({Vector(0, 0, 0), Vector(0, 1, 0), Vector(1, 0, 0), Vector(2, 0, 0)},
		{CPolygon(0, 1, 2), CPolygon(0, 2, 3, 2), CPolygon(0, 1, 2, 7)});
	tri->MakeTag(Tphong)->GetDataInstance()->SetBool(PHONGTAG_PHONG_ANGLELIMIT, false);
	const std::vector<Vector> n = tri->CreatePhongNormals();
	ASSERT_EQ(n.size(), 12u);
	for(int32_t k = 0; k < 12; ++k)
		EXPECT_TRUE(isNear(n[k], k < 4 ? Vector(0, 0, -1) : Vector())) << "corner " << k;
}

TEST(PolygonObject, PhongNormalsOfACubeAreSharpAndOfASphereSmooth)
{
	for(int32_t type : std::initializer_list<int32_t>{Ocube, Osphere})
	{
		SCOPED_TRACE(type);
		Owned<BaseObject> generator(BaseObject::Alloc(type));
		Owned<PolygonObject> op(BuildPrimitive(*generator));
		const std::vector<Vector> n = op->CreatePhongNormals();
		ASSERT_EQ(n.size(), 4u * op->GetPolygonCount());
		for(int32_t i = 0; i < op->GetPolygonCount(); ++i)
		{
			const CPolygon& p = op->GetPolygonR()[i];
			const int32_t corners[] = {p.a, p.b, p.c, p.d};
			for(int32_t k = 0; k < 4; ++k)
			{
				// The cube's corners keep the side's axis, the direction of
				// the side's centre; the sphere's point along the radius.
				const Vector* points = op->GetPointR();
				const Vector side = (points[p.a] + points[p.c]) / 2;
				if(type == Ocube)
					EXPECT_TRUE(isNear(n[4 * i + k], side.GetNormalized())) << i << " " << k;
				else
					EXPECT_GT(Dot(n[4 * i + k], points[corners[k]].GetNormalized()), std::cos(M_PI / 180)) << i << " " << k;
			}
		}
	}
}
