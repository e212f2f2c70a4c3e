#include "c4d/polygon_object.h"

#include <gtest/gtest.h>

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
