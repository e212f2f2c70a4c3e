#include "c4d/base_document.h"
#include "c4d/document_file.h"
#include "c4d/plugin_registry.h"

#include <gtest/gtest.h>

namespace
{

// A tag plug-in that records what the host does with its nodes.
struct Record
{
	int inits = 0;
	int frees = 0;
	bool objectSeenAtFree = false;
	bool refuseInit = false;
};
Record record;

class RecordingTag : public TagData
{
public:
	static NodeData* Alloc() { return new RecordingTag(); }

	bool Init(GeListNode* node) override
	{
		++record.inits;
		BaseContainer* data = static_cast<BaseList2D*>(node)->GetDataInstance();
		data->SetFloat(1926, 500.0);
		data->SetInt32(1960, 2);
		return !record.refuseInit;
	}
	void Free(GeListNode* node) override
	{
		++record.frees;
		record.objectSeenAtFree = static_cast<BaseTag*>(node)->GetObject() != nullptr;
	}
};

class Counted : public CommandData
{
public:
	explicit Counted(int& deletions_) : deletions(deletions_) {}
	~Counted() override { ++deletions; }

private:
	int& deletions;
};

class PluginRegistryTest : public testing::Test
{
protected:
	void SetUp() override
	{
		record = Record();
		PluginRegistry::get().clear();
	}
	void TearDown() override { PluginRegistry::get().clear(); }
};

const int32_t TAG_ID = 1022083;

} // namespace

TEST_F(PluginRegistryTest, RegistrationsKeepTheirOrderAndRefuseTakenIds)
{
	int deletions = 0;
	EXPECT_TRUE(RegisterTagPlugin(TAG_ID, String("Camera"), 1, RecordingTag::Alloc, String("TCameraTag"),
		Filename("res/CameraTag.tif"), 0));
	// A command with an empty name is the host's business to accept.
	EXPECT_TRUE(RegisterCommandPlugin(1022283, String(), 0, Filename(), String("#$3 --"), new Counted(deletions)));
	EXPECT_FALSE(RegisterCommandPlugin(TAG_ID, String("Clash"), 0, Filename(), String(), new Counted(deletions)));
	EXPECT_EQ(deletions, 1);
	EXPECT_FALSE(RegisterVideoPostPlugin(1020896, String("No allocator"), 0, nullptr, String("x"), 0, 100));
	EXPECT_TRUE(RegisterVideoPostPlugin(1020896, String("Velorn"), 0, RecordingTag::Alloc, String("x"), 0, 100));

	EXPECT_EQ(PluginRegistry::get().ids(), (std::vector<int32_t>{TAG_ID, 1022283, 1020896}));
	const PluginRecord* tag = PluginRegistry::get().find(TAG_ID);
	ASSERT_NE(tag, nullptr);
	EXPECT_EQ(tag->kind, PluginKind::Tag);
	EXPECT_EQ(tag->name, String("Camera"));
	EXPECT_EQ(tag->description, String("TCameraTag"));
	EXPECT_EQ(PluginRegistry::get().find(1022283)->help, String("#$3 --"));
	EXPECT_EQ(PluginRegistry::get().find(1020896)->priority, 100);

	PluginRegistry::get().clear();
	EXPECT_EQ(deletions, 2);
	EXPECT_EQ(PluginRegistry::get().find(TAG_ID), nullptr);
}

TEST_F(PluginRegistryTest, NodesOfPluginTypesGetInitAndFree)
{
	EXPECT_EQ(BaseTag::Alloc(TAG_ID), nullptr);
	ASSERT_TRUE(RegisterTagPlugin(TAG_ID, String("Camera"), 1, RecordingTag::Alloc, String("TCameraTag"),
		Filename(), 0));
	EXPECT_FALSE(IsKnownNodeType(NodeClass::Object, TAG_ID));
	EXPECT_EQ(BaseObject::Alloc(TAG_ID), nullptr);

	BaseObject* camera = BaseObject::Alloc(Ocamera);
	ASSERT_NE(camera, nullptr);
	EXPECT_EQ(camera->GetNodeData(), nullptr);
	BaseTag* tag = camera->MakeTag(TAG_ID);
	ASSERT_NE(tag, nullptr);
	EXPECT_NE(dynamic_cast<RecordingTag*>(tag->GetNodeData()), nullptr);
	EXPECT_EQ(record.inits, 1);
	EXPECT_EQ(tag->GetDataInstance()->GetFloat(1926), 500.0);

	// Freeing the tag: its plug-in still sees the object it was on.
	BaseTag::Free(tag);
	EXPECT_EQ(record.frees, 1);
	EXPECT_TRUE(record.objectSeenAtFree);
	// Freeing an object frees its tags' plug-in data as well.
	camera->MakeTag(TAG_ID);
	BaseObject::Free(camera);
	EXPECT_EQ(record.frees, 2);

	record.refuseInit = true;
	EXPECT_EQ(BaseTag::Alloc(TAG_ID), nullptr);
	EXPECT_EQ(record.frees, 3);
}

TEST_F(PluginRegistryTest, DocumentsGetInitValuesUnderTheFilesValues)
{
	ASSERT_TRUE(RegisterTagPlugin(TAG_ID, String("Camera"), 1, RecordingTag::Alloc, String("TCameraTag"),
		Filename(), 0));
	BaseDocument* doc = ReadDocumentText(R"({"version": 1, "objects": [{"type": 5103, "tags": [
		{"type": 1022083, "params": [{"id": 1926, "type": "real", "value": 250}]}]}]})",
		Filename("scene.json"));
	const BaseContainer* data = doc->GetFirstObject()->GetFirstTag()->GetDataInstance();
	EXPECT_EQ(data->GetFloat(1926), 250.0);
	EXPECT_EQ(data->GetInt32(1960), 2);
	BaseDocument::Free(doc);
}
