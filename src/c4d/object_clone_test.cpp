#include "c4d/base_object.h"

#include "c4d/base_shader.h"
#include "c4d/polygon_object.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"

#include <gtest/gtest.h>

// A clone is a free tree of copies: parameters and owned shaders (links
// pointing to the copies), matrix, modes, tracks, tags with their data,
// and the points and polygons of polygon objects, children included;
// caches are not copied.
TEST(BaseObject, CloneCopiesTheTree)
{
	PolygonObject* source = PolygonObject::Alloc(3, 1);
	source->SetName("Triangle");
	source->GetPointW()[1] = Vector(1, 2, 3);
	source->GetPolygonW()[0] = CPolygon(0, 1, 2);
	source->SetMl(Matrix(Vector(4, 5, 6), Vector(1, 0, 0), Vector(0, 2, 0), Vector(0, 0, 1)));
	source->SetRenderMode(MODE_OFF);
	source->SetEditorMode(MODE_ON);
	source->SetDeformMode(false);
	source->GetTracks().position.AppendKey(BaseTime(1.0), Vector(7, 8, 9));
	source->GetDataInstance()->SetInt32(1234, 42);
	BaseShader* owned = BaseShader::Alloc(Xcolor);
	source->InsertShader(owned);
	source->GetDataInstance()->SetLink(1235, owned);
	UVWTag* uvw = UVWTag::Alloc(1);
	uvw->Set(0, {Vector(0, 0, 0), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 1, 0)});
	source->InsertTag(uvw);
	TextureTag* texture = TextureTag::Alloc();
	texture->SetName("Paint");
	source->InsertTag(texture, uvw);
	BaseObject* child = BaseObject::Alloc(Osphere);
	child->SetName("Child");
	child->InsertUnder(source);
	PolygonObject* grandchild = PolygonObject::Alloc(4, 0);
	grandchild->InsertUnder(child);
	BaseObject* second = BaseObject::Alloc(Onull);
	second->InsertUnderLast(source);
	source->SetCache(PolygonObject::Alloc(1, 0));

	BaseObject* copy = source->GetClone();
	ASSERT_NE(copy, nullptr);
	PolygonObject* poly = dynamic_cast<PolygonObject*>(copy);
	ASSERT_NE(poly, nullptr);
	EXPECT_EQ(copy->GetName(), String("Triangle"));
	EXPECT_EQ(copy->GetUp(), nullptr);
	EXPECT_EQ(copy->GetListHead(), nullptr);
	EXPECT_EQ(copy->GetMl(), source->GetMl());
	EXPECT_EQ(copy->GetRenderMode(), MODE_OFF);
	EXPECT_EQ(copy->GetEditorMode(), MODE_ON);
	EXPECT_FALSE(copy->GetDeformMode());
	ASSERT_EQ(copy->GetTracks().position.GetKeys().size(), 1u);
	EXPECT_EQ(copy->GetTracks().position.GetValue(BaseTime(1.0)), Vector(7, 8, 9));
	EXPECT_EQ(copy->GetDataInstance()->GetInt32(1234), 42);
	ASSERT_NE(copy->GetFirstShader(), nullptr);
	EXPECT_NE(copy->GetFirstShader(), owned);
	EXPECT_EQ(copy->GetDataInstance()->GetLink(1235), copy->GetFirstShader());
	EXPECT_EQ(copy->GetCache(), nullptr);

	ASSERT_EQ(poly->GetPointCount(), 3);
	EXPECT_EQ(poly->GetPointR()[1], Vector(1, 2, 3));
	ASSERT_EQ(poly->GetPolygonCount(), 1);
	EXPECT_EQ(poly->GetPolygonR()[0], CPolygon(0, 1, 2));

	// The tags in their order, as their classes, held by the copy.
	const UVWTag* uvwCopy = dynamic_cast<const UVWTag*>(copy->GetFirstTag());
	ASSERT_NE(uvwCopy, nullptr);
	EXPECT_NE(uvwCopy, uvw);
	EXPECT_EQ(uvwCopy->GetObject(), copy);
	ASSERT_EQ(uvwCopy->GetDataCount(), 1);
	EXPECT_EQ(uvwCopy->Get(0).b, Vector(1, 0, 0));
	const BaseTag* textureCopy = uvwCopy->GetNext();
	ASSERT_NE(dynamic_cast<const TextureTag*>(textureCopy), nullptr);
	EXPECT_EQ(textureCopy->GetName(), String("Paint"));
	EXPECT_EQ(textureCopy->GetNext(), nullptr);

	// The children in their order, a polygon object among them as one.
	BaseObject* childCopy = copy->GetDown();
	ASSERT_NE(childCopy, nullptr);
	EXPECT_NE(childCopy, child);
	EXPECT_EQ(childCopy->GetName(), String("Child"));
	EXPECT_EQ(childCopy->GetType(), Osphere);
	const PolygonObject* grandchildCopy = dynamic_cast<const PolygonObject*>(childCopy->GetDown());
	ASSERT_NE(grandchildCopy, nullptr);
	EXPECT_EQ(grandchildCopy->GetPointCount(), 4);
	ASSERT_NE(childCopy->GetNext(), nullptr);
	EXPECT_EQ(childCopy->GetNext()->GetType(), Onull);
	EXPECT_EQ(childCopy->GetNext()->GetNext(), nullptr);

	// The copy stands alone.
	BaseObject::Free(source);
	EXPECT_EQ(copy->GetDataInstance()->GetInt32(1234), 42);
	BaseObject::Free(copy);
}
