#include "c4d/base_object.h"

#include "c4d/layer_object.h"
#include "c4d/polygon_object.h"

#include <gtest/gtest.h>

TEST(BaseObject, GlobalMatrixThroughTheParentChain)
{
	GeListHead head(nullptr);
	BaseObject* parent = BaseObject::Alloc(Onull);
	BaseObject* child = BaseObject::Alloc(Onull);
	BaseObject* grandchild = BaseObject::Alloc(Onull);
	head.InsertLast(parent);
	child->InsertUnder(parent);
	grandchild->InsertUnder(child);
	// A quarter turn about z, moved by 10 in x.
	parent->SetMl(Matrix(Vector(10, 0, 0), Vector(0, 1, 0), Vector(-1, 0, 0), Vector(0, 0, 1)));
	// Twice the size, moved by (1, 2, 3).
	child->SetMl(Matrix(Vector(1, 2, 3), Vector(2, 0, 0), Vector(0, 2, 0), Vector(0, 0, 2)));
	grandchild->SetMl(Matrix(Vector(0, 0, 1), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)));
	const Matrix childMg(Vector(8, 1, 3), Vector(0, 2, 0), Vector(-2, 0, 0), Vector(0, 0, 2));
	const struct
	{
		const char* name;
		const BaseObject* op;
		Matrix mg, upMg;
	} cases[] = {
		{"parent", parent, parent->GetMl(), Matrix()},
		{"child", child, childMg, parent->GetMl()},
		{"grandchild", grandchild, Matrix(Vector(8, 1, 5), Vector(0, 2, 0), Vector(-2, 0, 0), Vector(0, 0, 2)), childMg},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.name);
		EXPECT_EQ(t.op->GetMg(), t.mg);
		EXPECT_EQ(t.op->GetUpMg(), t.upMg);
	}
	// Setting the world matrix changes the local one relative to the parent.
	grandchild->SetMg(Matrix(Vector(8, 1, 7), Vector(0, 2, 0), Vector(-2, 0, 0), Vector(0, 0, 2)));
	EXPECT_EQ(grandchild->GetMl(), Matrix(Vector(0, 0, 2), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)));
}

TEST(BaseObject, CachesAndTheirOrigin)
{
	BaseObject* generator = BaseObject::Alloc(Osphere);
	generator->SetMl(Matrix(Vector(5, 0, 0), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)));
	BaseObject* cache = BaseObject::Alloc(Onull);
	BaseObject* inner = BaseObject::Alloc(Osphere);
	inner->InsertUnder(cache);
	inner->SetMl(Matrix(Vector(0, 1, 0), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)));
	PolygonObject* innerCache = PolygonObject::Alloc(3, 1);
	inner->SetCache(innerCache);
	generator->SetCache(cache);
	BaseObject* deformed = BaseObject::Alloc(Opolygon);
	generator->SetDeformCache(deformed);

	EXPECT_EQ(cache->GetCacheParent(), generator);
	EXPECT_EQ(inner->GetCacheParent(), nullptr);
	EXPECT_EQ(innerCache->GetCacheParent(), inner);
	const struct
	{
		const char* name;
		const BaseObject* op;
		const BaseObject* origin;
	} origins[] = {{"generator", generator, nullptr}, {"cache", cache, generator}, {"inner", inner, generator},
		{"inner cache", innerCache, generator}, {"deform cache", deformed, generator}};
	for(const auto& t : origins)
	{
		SCOPED_TRACE(t.name);
		EXPECT_EQ(t.op->GetOrigin(true), t.origin);
	}
	// A cache lies at its generator.
	EXPECT_EQ(innerCache->GetMg().off, Vector(5, 1, 0));
	// Replacing a cache frees the one before; setting the same one keeps it.
	generator->SetDeformCache(deformed);
	EXPECT_EQ(generator->GetDeformCache(), deformed);
	generator->SetDeformCache(nullptr);
	EXPECT_EQ(generator->GetDeformCache(), nullptr);
	BaseObject::Free(generator);
}

TEST(BaseObject, TagsByTypeAndIndex)
{
	BaseObject* op = BaseObject::Alloc(Opolygon);
	BaseTag* uvw0 = op->MakeTag(Tuvw);
	BaseTag* texture0 = op->MakeTag(Ttexture, uvw0);
	BaseTag* texture1 = op->MakeTag(Ttexture, texture0);
	BaseTag* phong = op->MakeTag(Tphong);
	BaseTag* uvw1 = BaseTag::Alloc(Tuvw);
	op->InsertTag(uvw1, texture1);
	// The tag list is now phong, uvw0, texture0, texture1, uvw1.
	const struct
	{
		int32_t type, nr;
		const BaseTag* tag;
	} cases[] = {
		{Ttexture, 0, texture0},
		{Ttexture, 1, texture1},
		{Ttexture, 2, nullptr},
		{Tuvw, 0, uvw0},
		{Tuvw, 1, uvw1},
		{Tphong, 0, phong},
		{Tphong, 1, nullptr},
		{Tpoint, 0, nullptr},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(testing::Message() << t.type << " " << t.nr);
		EXPECT_EQ(op->GetTag(t.type, t.nr), t.tag);
	}
	EXPECT_EQ(op->GetFirstTag(), phong);
	EXPECT_EQ(uvw1->GetObject(), op);
	texture0->Remove();
	EXPECT_EQ(texture0->GetObject(), nullptr);
	EXPECT_EQ(op->GetTag(Ttexture), texture1);
	BaseTag::Free(texture0);
	BaseObject::Free(op);
}

TEST(BaseObject, ModeDefaultsAndLayer)
{
	BaseObject op(Olight);
	EXPECT_EQ(op.GetRenderMode(), MODE_UNDEF);
	EXPECT_EQ(op.GetEditorMode(), MODE_UNDEF);
	EXPECT_TRUE(op.GetDeformMode());

	EXPECT_EQ(op.GetLayerData(nullptr), nullptr);
	LayerObject layer;
	layer.SetLayerData(LayerData{false, true});
	op.SetLayerObject(&layer);
	EXPECT_FALSE(op.GetLayerData(nullptr)->render);
	EXPECT_TRUE(op.GetLayerData(nullptr)->view);
}
