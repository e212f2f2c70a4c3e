#pragma once

#include "c4d/polygon_object.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

// Frees a node of the host when the test lets go of it.
struct FreeNode
{
	template<typename T>
	void operator()(T* node) const
	{
		T::Free(node);
	}
};
template<typename T>
using Owned = std::unique_ptr<T, FreeNode>;

inline Owned<PolygonObject> makePolygonObject(const std::vector<Vector>& points, const std::vector<CPolygon>& polygons)
{
	Owned<PolygonObject> op(PolygonObject::Alloc((int32_t)points.size(), (int32_t)polygons.size()));
	std::copy(points.begin(), points.end(), op->GetPointW());
	std::copy(polygons.begin(), polygons.end(), op->GetPolygonW());
	return op;
}

inline testing::AssertionResult isNear(const Vector& actual, const Vector& expected, double tolerance = 1e-9)
{
	if((actual - expected).GetLength() <= tolerance)
		return testing::AssertionSuccess();
	return testing::AssertionFailure() << "(" << actual.x << ", " << actual.y << ", " << actual.z << ") is not ("
		<< expected.x << ", " << expected.y << ", " << expected.z << ")";
}
