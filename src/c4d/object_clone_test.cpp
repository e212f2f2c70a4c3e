#include "c4d/base_object.h"

#include "c4d/base_document.h"
#include "c4d/base_shader.h"
#include "c4d/document_file.h"
#include "c4d/geometry_test_helpers.h"
#include "c4d/polygon_object.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

// The text of a document that holds the object alone.
std::string documentOf(BaseObject* op)
{
	BaseDocument doc;
	doc.InsertObject(op, nullptr, nullptr);
	const std::string text = WriteDocumentText(doc);
	op->Remove();
	return text;
}

} // namespace

// A clone is a free tree of copies: parameters and owned shaders (links
// pointing to the copies), matrix, modes, tracks, tags of their classes
// with their data, and the points and polygons of polygon objects,
// children included; caches are not copied. The document text compares
// all that the file form holds.
TEST(BaseObject, CloneCopiesTheTree)
{
	Owned<PolygonObject> source(PolygonObject::Alloc(3, 1));
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
	child->InsertUnder(source.get());
	PolygonObject::Alloc(4, 0)->InsertUnder(child);
	BaseObject::Alloc(Onull)->InsertUnderLast(source.get());

	Owned<BaseObject> copy(source->GetClone());
	ASSERT_NE(dynamic_cast<PolygonObject*>(copy.get()), nullptr);
	EXPECT_EQ(copy->GetUp(), nullptr);
	EXPECT_EQ(copy->GetListHead(), nullptr);
	// The classes first: the writer reads a tag's data by its type.
	const UVWTag* uvwCopy = dynamic_cast<const UVWTag*>(copy->GetFirstTag());
	ASSERT_NE(uvwCopy, nullptr);
	ASSERT_NE(dynamic_cast<const TextureTag*>(uvwCopy->GetNext()), nullptr);
	EXPECT_EQ(uvwCopy->GetObject(), copy.get());
	ASSERT_NE(dynamic_cast<const PolygonObject*>(copy->GetDown()->GetDown()), nullptr);
	EXPECT_NE(copy->GetDown(), child);
	const std::string copied = documentOf(copy.get());
	EXPECT_EQ(copied, documentOf(source.get()));
	// Files leave out an object's shaders.
	ASSERT_NE(copy->GetFirstShader(), nullptr);
	EXPECT_NE(copy->GetFirstShader(), owned);
	EXPECT_EQ(copy->GetDataInstance()->GetLink(1235), copy->GetFirstShader());

	// The copy stands alone, and a cache stays with the original.
	source->SetCache(PolygonObject::Alloc(1, 0));
	EXPECT_EQ(Owned<BaseObject>(source->GetClone())->GetCache(), nullptr);
	source.reset();
	EXPECT_EQ(documentOf(copy.get()), copied);
}
