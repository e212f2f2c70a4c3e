#include "c4d/base_document.h"
#include "c4d/plugin_test_helpers.h"

#include <gtest/gtest.h>

TEST(BaseDocument, TimeFpsAndFrame)
{
	BaseDocument doc;
	EXPECT_EQ(doc.GetFps(), 30);
	EXPECT_EQ(doc.GetFrame(), 0);
	const struct
	{
		int32_t fps;
		BaseTime time;
		int32_t expectedFps, frame;
	} cases[] = {
		{25, BaseTime(12, 25), 25, 12},
		{30, BaseTime(12, 25), 30, 14},
		{24, BaseTime(1.5), 24, 36},
		{0, BaseTime(1.5), 24, 36}, // refused, the rate stays
		{-5, BaseTime(-1, 50), 24, -1},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.fps);
		doc.SetFps(t.fps);
		doc.SetTime(t.time);
		EXPECT_EQ(doc.GetFps(), t.expectedFps);
		EXPECT_EQ(doc.GetTime(), t.time);
		EXPECT_EQ(doc.GetFrame(), t.frame);
	}
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

	doc->SetActiveCamera(d);
	EXPECT_EQ(doc->GetActiveCamera(), d);
	// The document frees everything it holds.
	BaseDocument::Free(doc);
}

TEST(BaseDocument, RenderDataVideoPosts)
{
	BaseDocument doc;
	RenderData* rd = doc.GetActiveRenderData();
	ASSERT_NE(rd, nullptr);
	EXPECT_EQ(rd->GetFirstVideoPost(), nullptr);
	rd->GetDataInstance()->SetInt32(5, 640);
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
	EXPECT_EQ(doc.GetActiveRenderData()->GetData().GetInt32(5), 640);
}

TEST(BaseDocument, PathNameAndUnits)
{
	BaseDocument doc;
	doc.SetDocumentPath(Filename("/scenes"));
	doc.SetDocumentName(Filename("room.c4d"));
	EXPECT_EQ(doc.GetDocumentPath(), Filename("/scenes"));
	EXPECT_EQ(doc.GetDocumentName(), Filename("room.c4d"));
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
