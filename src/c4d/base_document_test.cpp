#include "c4d/base_document.h"
#include "c4d/base_thread.h"
#include "c4d/geometry_test_helpers.h"
#include "c4d/plugin_test_helpers.h"
#include "c4d/primitives.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{

void expectNear(const Matrix& a, const Matrix& b)
{
	EXPECT_TRUE(isNear(a.off, b.off));
	EXPECT_TRUE(isNear(a.v1, b.v1));
	EXPECT_TRUE(isNear(a.v2, b.v2));
	EXPECT_TRUE(isNear(a.v3, b.v3));
}

BaseObject* insert(BaseDocument& doc, int32_t type, BaseObject* parent)
{
	BaseObject* op = BaseObject::Alloc(type);
	doc.InsertObject(op, parent, parent ? parent->GetDownLast() : nullptr);
	return op;
}

Matrix offset(double x, double y, double z)
{
	return Matrix(Vector(x, y, z), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1));
}

} // namespace

TEST(BaseDocument, TimeFpsAndFrame)
{
	// The frame is the time's at the document's rate, 30 until set.
	BaseDocument doc;
	doc.SetTime(BaseTime(12, 25));
	EXPECT_EQ(doc.GetFrame(), 14);
	doc.SetFps(25);
	EXPECT_EQ(doc.GetFrame(), 12);
	// Rates below 1 are refused.
	doc.SetFps(0);
	doc.SetFps(-5);
	EXPECT_EQ(doc.GetFps(), 25);
	doc.SetFps(1);
	EXPECT_EQ(doc.GetFps(), 1);
}

TEST(BaseDocument, InsertObjectAndMaterials)
{
	BaseDocument* doc = BaseDocument::Alloc();
	BaseObject* a = BaseObject::Alloc(Onull);
	BaseObject* b = BaseObject::Alloc(Ocube);
	BaseObject* c = BaseObject::Alloc(Osphere);
	BaseObject* d = BaseObject::Alloc(Ocamera);
	doc->InsertObject(a, nullptr, nullptr);
	doc->InsertObject(b, nullptr, nullptr);
	doc->InsertObject(c, a, nullptr);
	doc->InsertObject(d, nullptr, c);
	// b, then a with the children c and d.
	EXPECT_EQ(doc->GetFirstObject(), b);
	EXPECT_EQ(b->GetNext(), a);
	EXPECT_EQ(a->GetDown(), c);
	EXPECT_EQ(c->GetNext(), d);
	EXPECT_EQ(d->GetUp(), a);
	EXPECT_EQ(a->GetUp(), nullptr);
	EXPECT_EQ(b->GetListHead()->GetMain(), doc);

	BaseMaterial* m1 = BaseMaterial::Alloc(Mmaterial);
	BaseMaterial* m2 = BaseMaterial::Alloc(Mmaterial);
	doc->InsertMaterial(m1);
	doc->InsertMaterial(m2, m1);
	EXPECT_EQ(doc->GetFirstMaterial(), m1);
	EXPECT_EQ(m1->GetNext(), m2);

	LayerObject* layer = LayerObject::Alloc();
	doc->GetLayerObjectRoot()->InsertLast(layer);
	c->SetLayerObject(layer);
	EXPECT_TRUE(c->GetLayerData(doc)->render);

	// The document frees everything it holds.
	BaseDocument::Free(doc);
}

TEST(BaseDocument, RenderDataVideoPosts)
{
	BaseDocument doc;
	RenderData* rd = doc.GetActiveRenderData();
	ASSERT_NE(rd, nullptr);
	EXPECT_EQ(rd->GetFirstVideoPost(), nullptr);
	registerPlainPlugins(PluginKind::VideoPost, {1, 2, 3});
	BaseVideoPost* first = BaseVideoPost::Alloc(1);
	BaseVideoPost* second = BaseVideoPost::Alloc(2);
	BaseVideoPost* third = BaseVideoPost::Alloc(3);
	rd->InsertVideoPostLast(third);
	rd->InsertVideoPost(first);
	rd->InsertVideoPost(second, first);
	int32_t types = 0;
	for(BaseVideoPost* vp = rd->GetFirstVideoPost(); vp; vp = vp->GetNext())
		types = types * 10 + vp->GetType();
	EXPECT_EQ(types, 123);
}

TEST(BaseDocument, Units)
{
	BaseDocument doc;
	EXPECT_EQ(doc.GetUnit(), DOCUMENT_UNIT_CM);
	const struct
	{
		int32_t unit;
		bool ok;
		double scale;
	} cases[] = {
		{DOCUMENT_UNIT_KM, true, 1000.0},
		{DOCUMENT_UNIT_M, true, 1.0},
		{DOCUMENT_UNIT_MM, true, 0.001},
		{0, false, 0.001},
		{5, false, 0.001},
		{DOCUMENT_UNIT_CM, true, 0.01},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.unit);
		EXPECT_EQ(doc.SetUnit(t.unit), t.ok);
		EXPECT_EQ(doc.GetUnitScale(), t.scale);
	}
}

TEST(BaseDocument, AnimateObjectSetsTheTracksValues)
{
	BaseDocument doc;
	// P moves along x; its child C turns and stretches, C's child G moves. N,
	// also a child of P, has no tracks; S, a sibling of P, is left alone.
	BaseObject* p = insert(doc, Onull, nullptr);
	BaseObject* c = insert(doc, Onull, p);
	BaseObject* g = insert(doc, Onull, c);
	BaseObject* n = insert(doc, Onull, p);
	BaseObject* s = BaseObject::Alloc(Onull);
	doc.InsertObject(s, nullptr, p);
	p->GetTracks().position.AppendKey(BaseTime(0, 1), Vector(0, 0, 0));
	p->GetTracks().position.AppendKey(BaseTime(1, 1), Vector(10, 0, 0));
	c->SetMl(offset(0, 5, 0));
	c->GetTracks().rotation.AppendKey(BaseTime(0, 1), Vector(0, 0, 0));
	c->GetTracks().rotation.AppendKey(BaseTime(1, 1), Vector(M_PI / 2, 0, 0));
	c->GetTracks().scale.AppendKey(BaseTime(0, 1), Vector(1, 1, 1));
	c->GetTracks().scale.AppendKey(BaseTime(1, 1), Vector(3, 1, 1));
	g->GetTracks().position.AppendKey(BaseTime(0, 1), Vector(1, 1, 1));
	g->GetTracks().position.AppendKey(BaseTime(1, 1), Vector(3, 3, 3));
	const Matrix sheared(Vector(1, 1, 1), Vector(1, 0, 0), Vector(0.5, 1, 0), Vector(0.2, 0.3, 1));
	n->SetMl(sheared);
	s->SetMl(offset(-1, -1, -1));
	s->GetTracks().position.AppendKey(BaseTime(0, 1), Vector(7, 7, 7));

	const double r = std::sqrt(0.5);
	const Matrix cLast(Vector(0, 5, 0), Vector(0, 0, -3), Vector(0, 1, 0), Vector(1, 0, 0));
	const struct
	{
		const char* name;
		BaseTime time;
		int32_t flags;
		Matrix p, c, g;
	} cases[] = {
		{"before the first key", BaseTime(-1, 1), 0, offset(0, 0, 0), offset(0, 5, 0), offset(1, 1, 1)},
		{"between keys", BaseTime(1, 2), ANIMATEFLAGS_QUICK, offset(5, 0, 0),
			Matrix(Vector(0, 5, 0), Vector(2 * r, 0, -2 * r), Vector(0, 1, 0), Vector(r, 0, r)), offset(2, 2, 2)},
		{"after the last key", BaseTime(2, 1), 0, offset(10, 0, 0), cLast, offset(3, 3, 3)},
		// The children keep the values of the case before.
		{"without children", BaseTime(1, 4), ANIMATEFLAGS_NO_CHILDREN, offset(2.5, 0, 0), cLast, offset(3, 3, 3)},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.name);
		doc.AnimateObject(p, t.time, t.flags);
		expectNear(p->GetMl(), t.p);
		expectNear(c->GetMl(), t.c);
		expectNear(g->GetMl(), t.g);
		EXPECT_EQ(n->GetMl(), sheared);
		EXPECT_EQ(s->GetMl(), offset(-1, -1, -1));
	}

	// A channel without keys keeps what the matrix has: the turned and
	// stretched axes of C under a new scale, their lengths under a new turn.
	c->GetTracks().rotation.Clear();
	c->GetTracks().scale.Clear();
	c->GetTracks().scale.AppendKey(BaseTime(0, 1), Vector(2, 2, 2));
	doc.AnimateObject(c, BaseTime(0, 1), 0);
	expectNear(c->GetMl(), Matrix(Vector(0, 5, 0), Vector(0, 0, -2), Vector(0, 2, 0), Vector(2, 0, 0)));
	c->GetTracks().scale.Clear();
	c->GetTracks().rotation.AppendKey(BaseTime(0, 1), Vector(0, 0, M_PI / 2));
	doc.AnimateObject(c, BaseTime(0, 1), 0);
	expectNear(c->GetMl(), Matrix(Vector(0, 5, 0), Vector(0, 2, 0), Vector(-2, 0, 0), Vector(0, 0, 2)));

	// ExecutePasses animates every top-level object at the document's time.
	doc.SetTime(BaseTime(1, 2));
	EXPECT_TRUE(doc.ExecutePasses(nullptr, true, true, false, 0));
	expectNear(p->GetMl(), offset(5, 0, 0));
	expectNear(g->GetMl(), offset(2, 2, 2));
	EXPECT_EQ(s->GetMl(), offset(7, 7, 7));
}

TEST(BaseDocument, ExecutePassesBuildsMissingPrimitiveCaches)
{
	BaseDocument doc;
	BaseObject* sphere = insert(doc, Osphere, nullptr);
	BaseObject* group = insert(doc, Onull, nullptr);
	BaseObject* inner = insert(doc, Onull, group);
	BaseObject* cube = insert(doc, Ocube, inner);
	BaseObject* frozen = insert(doc, Ocube, nullptr);
	PolygonObject* explicitCache = PolygonObject::Alloc(3, 1);
	frozen->SetCache(explicitCache);

	// A thread that was asked to stop stops the passes before they start.
	BaseThread stopped;
	stopped.End();
	EXPECT_FALSE(doc.ExecutePasses(&stopped, false, false, true, 0));
	EXPECT_EQ(sphere->GetCache(), nullptr);

	ASSERT_TRUE(doc.ExecutePasses(nullptr, false, false, true, 0));
	for(BaseObject* op : {sphere, cube})
	{
		SCOPED_TRACE(op->GetType());
		const Owned<PolygonObject> expected(BuildPrimitive(*op));
		ASSERT_TRUE(expected);
		ASSERT_NE(op->GetCache(), nullptr);
		ASSERT_EQ(op->GetCache()->GetType(), Opolygon);
		const auto* cache = static_cast<const PolygonObject*>(op->GetCache());
		EXPECT_EQ(cache->GetPointCount(), expected->GetPointCount());
		EXPECT_EQ(cache->GetPolygonCount(), expected->GetPolygonCount());
		EXPECT_EQ(cache->GetCacheParent(), op);
		EXPECT_TRUE(cache->GetBit(BIT_BUILTCACHE));
	}
	EXPECT_EQ(group->GetCache(), nullptr);
	EXPECT_EQ(inner->GetCache(), nullptr);
	EXPECT_EQ(frozen->GetCache(), explicitCache);
	EXPECT_FALSE(explicitCache->GetBit(BIT_BUILTCACHE));

	// Caches that exist stay.
	const BaseObject* built = sphere->GetCache();
	ASSERT_TRUE(doc.ExecutePasses(nullptr, false, false, true, 0));
	EXPECT_EQ(sphere->GetCache(), built);
}
