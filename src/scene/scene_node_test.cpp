#include "scene/scene_node_material.h"
#include "scene/scene_node_medium.h"
#include "scene/scene_node_metadata.h"
#include "scene/scene_node_root.h"
#include "support/exceptions.h"
#include "support/failures.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Velorn;

namespace
{

// A node of any type number that records the walks it takes part in.
class TestNode : public SceneNode
{
public:
	explicit TestNode(unsigned type_, const char* node_name = "node", uint32_t uid_ = 0xFFFFFFFFu) : type(type_)
	{
		name = node_name;
		uid = UID(uid_);
	}

	unsigned getType() const override { return type; }
	Reference<SceneNode> clone() const override { return Reference<SceneNode>(); }
	void writeXML(OStream&, unsigned, WriteContext&) const override {}
	void doVisit(VisitOperation&) override { visit_log->push_back(getName().str()); }
	bool doIsEqual(const SceneNode& other) const override { return baseFieldsEqual(other); }
	bool references(const SceneNode* node) const override { return node == target; }
	void updateReferences(const SceneNodeMap& map) override
	{
		if(target)
			if(const Reference<SceneNode>* replacement = map.find(target->uid))
				target = replacement->getPointer();
	}
	unsigned getHighestEmissionLayer() const override { return layer; }

	unsigned type;
	const SceneNode* target = nullptr;
	unsigned layer = 0;
	std::vector<std::string>* visit_log = nullptr;
};

Reference<TestNode> node(unsigned type, const char* name = "node", uint32_t uid = 0xFFFFFFFFu)
{
	return Reference<TestNode>(new TestNode(type, name, uid));
}


class CountingListener : public ProgressListener
{
public:
	void setProgress(float fraction) override { reported.push_back(fraction); }
	std::vector<float> reported;
};

} // namespace

TEST(SceneNode, UIDsAreGivenByTheRoot)
{
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	EXPECT_EQ(root->uid, UID(0));
	EXPECT_EQ(root->getName(), "Scene");

	Reference<TestNode> first = node(11);
	root->addChildNode(first);
	EXPECT_EQ(first->uid, UID(1)); // the first generated UID of an empty scene

	root->addChildNode(node(11, "given", 500));
	Reference<TestNode> after = node(11);
	root->addChildNode(after);
	EXPECT_EQ(after->uid, UID(501));

	// A lower given UID still moves the counter on by one.
	Reference<SceneNodeRoot> counted(new SceneNodeRoot());
	counted->setNextUID(9);
	counted->addChildNode(node(11, "low", 5));
	EXPECT_EQ(counted->next_uid, 10u);
	EXPECT_EQ(counted->getNextUID(), 11u);

	// A detached subtree keeps its invalid UIDs, also once it joins a root.
	Reference<TestNode> detached = node(3, "detached");
	Reference<TestNode> grandchild = node(3, "grandchild");
	detached->addChildNode(grandchild);
	EXPECT_FALSE(grandchild->uid.valid());
	EXPECT_EQ(grandchild->getRoot(), nullptr);
	root->addChildNode(detached);
	EXPECT_EQ(detached->uid, UID(502));
	EXPECT_FALSE(grandchild->uid.valid());
	EXPECT_EQ(grandchild->getRoot(), root.getPointer());

	// A child added below a node that already stands in a tree gets a UID.
	Reference<TestNode> deep = node(3, "deep");
	detached->addChildNode(deep);
	EXPECT_EQ(deep->uid, UID(503));
}

TEST(SceneNode, LookupsAndRemoval)
{
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	Reference<SceneNodeMaterial> material(new SceneNodeMaterial());
	material->uid = UID(7);
	Reference<SceneNodeMedium> medium(new SceneNodeMedium());
	medium->uid = UID(8);
	root->addChildNode(material);
	root->addChildNode(medium);

	EXPECT_EQ(root->findChild(UID(0)), root.getPointer());
	EXPECT_EQ(root->findChild(UID(7)), material.getPointer());
	EXPECT_EQ(root->findChild(UID(99)), nullptr);
	EXPECT_EQ(root->findMaterial(UID(7)), material.getPointer());
	EXPECT_EQ(root->findMedium(UID(8)), medium.getPointer());

	root->removeChildNode(material);
	EXPECT_EQ(root->getChildren().size(), 1u);
	EXPECT_EQ(root->findChild(UID(7)), nullptr);
	EXPECT_EQ(root->findChild(UID(8)), medium.getPointer());

	EXPECT_STREQ(sceneNodeTypeName(5), "Object");
	EXPECT_STREQ(sceneNodeTypeName(9), "Rectangle Light");
	EXPECT_STREQ(sceneNodeTypeName(15), "Unknown type");
}

TEST(SceneNode, ValidateMessagesInTheirOrder)
{
	struct Case
	{
		std::vector<unsigned> types;
		const char* message;
	};
	const Case cases[] = {
		{{1, 1}, "getNumChildrenOfType(SceneNodeCamera) > 1"},
		{{1, 1, 2, 2}, "getNumChildrenOfType(SceneNodeRenderSettings) > 1"},
		{{8, 1, 8, 1}, "getNumChildrenOfType(SceneNodeToneMapping) > 1"},
		{{10, 10, 11, 11}, "getNumChildrenOfType(SceneNodeBackgroundSettings) > 1"},
		{{11, 11}, "getNumChildrenOfType(SceneNodeMetaData) > 1"},
		{{1, 2, 8, 10, 11, 3, 3, 5}, "(no failure)"},
	};
	for(const Case& c : cases)
	{
		Reference<SceneNodeRoot> root(new SceneNodeRoot());
		for(unsigned type : c.types)
			root->addChildNode(node(type));
		EXPECT_EQ(VelornTest::failureOf([&] { root->validate(); }), c.message);
	}

	// Duplicate UIDs are found first, before any count.
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	root->addChildNode(node(1, "cam a", 4));
	root->addChildNode(node(1, "cam b"));
	root->addChildNode(node(3, "second", 4));
	EXPECT_EQ(VelornTest::failureOf([&] { root->validate(); }), "Two nodes sharing the same UID 4:\ncam a, second");

	// Only direct children are looked at.
	Reference<SceneNodeRoot> nested(new SceneNodeRoot());
	Reference<TestNode> parent = node(3, "parent", 3);
	nested->addChildNode(parent);
	parent->addChildNode(node(3, "twin a", 3));
	parent->addChildNode(node(3, "twin b", 3));
	EXPECT_EQ(VelornTest::failureOf([&] { nested->validate(); }), "(no failure)");
}

TEST(SceneNode, FindNodesByNameStopsAfterTheSubtreeThatReaches64)
{
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	for(int i = 0; i < 63; ++i)
		root->addChildNode(node(3, "Glass"));
	Reference<TestNode> group = node(3, "Glass group");
	for(int i = 0; i < 10; ++i)
		group->addChildNode(node(3, "glass child"));
	root->addChildNode(group);
	root->addChildNode(node(3, "GLASS after"));
	root->addChildNode(node(7, "glass medium"));

	Vector<Reference<SceneNode>> results;
	root->findNodesByName("gLaSs", results, Vector<unsigned>{3});
	// 63, the group, and its first child: the group's own walk stops after
	// the child that took the count past 64, and so does the root's.
	ASSERT_EQ(results.size(), 65u);
	EXPECT_EQ(results[63]->getName(), "Glass group");
	EXPECT_EQ(results[64]->getName(), "glass child");

	Vector<Reference<SceneNode>> media;
	root->findNodesByName("glass", media, Vector<unsigned>{7, 0});
	ASSERT_EQ(media.size(), 1u);
	EXPECT_EQ(media[0]->getName(), "glass medium");

	Vector<Reference<SceneNode>> roots;
	root->findNodesByName("sce", roots, Vector<unsigned>{0});
	ASSERT_EQ(roots.size(), 1u);
}

TEST(SceneNode, UpdateNodesReplacesInPlaceAndRepointsReferences)
{
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	Reference<TestNode> old_material = node(3, "old", 1);
	Reference<TestNode> model = node(5, "model", 2);
	model->target = old_material.getPointer();
	root->addChildNode(old_material);
	root->addChildNode(model);

	Reference<TestNode> new_material = node(3, "new", 1);
	Reference<TestNode> extra = node(3, "extra", 40);
	root->updateNodes(Vector<Reference<SceneNode>>{new_material, extra});

	ASSERT_EQ(root->getChildren().size(), 3u);
	EXPECT_EQ(root->getChildren()[0].getPointer(), new_material.getPointer());
	EXPECT_EQ(new_material->getParent(), root.getPointer());
	EXPECT_EQ(root->findChild(UID(1)), new_material.getPointer());
	EXPECT_EQ(model->target, new_material.getPointer());
	EXPECT_EQ(root->getChildren()[2].getPointer(), extra.getPointer());
}

TEST(SceneNode, WalksStampsAndEquality)
{
	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	std::vector<std::string> log;
	Reference<TestNode> a = node(3, "a");
	Reference<TestNode> a1 = node(3, "a1");
	Reference<TestNode> b = node(3, "b");
	for(TestNode* n : {a.getPointer(), a1.getPointer(), b.getPointer()})
		n->visit_log = &log;
	root->addChildNode(a);
	a->addChildNode(a1);
	root->addChildNode(b);
	VisitOperation op(VisitOperation::Bind, "", "");
	root->visitTree(op);
	EXPECT_EQ(log, (std::vector<std::string>{"a", "a1", "b"}));

	a1->layer = 5;
	EXPECT_EQ(root->getHighestEmissionLayerInTree(), 5u);

	a->markChanged();
	b->markChanged();
	EXPECT_EQ(a->getChangeStamp(), 1u);
	EXPECT_EQ(b->getChangeStamp(), 2u);
	Reference<TestNode> detached = node(3);
	detached->markChanged();
	EXPECT_EQ(detached->getChangeStamp(), 0u);

	a->setFlags(2);
	b->setFlags(2);
	EXPECT_TRUE(a->testFlags(2));
	EXPECT_FALSE(a->testFlags(1));
	root->clearChangeFlags(1);
	EXPECT_EQ(a->getFlags(), 0u);
	EXPECT_EQ(b->getFlags(), 2u);

	Reference<SceneNodeMetaData> m1(new SceneNodeMetaData());
	m1->author = "x";
	Reference<SceneNode> m2 = m1->clone();
	EXPECT_TRUE(m1->isEqual(*m2));
	m1->addChildNode(node(3, "child"));
	EXPECT_FALSE(m1->isEqual(*m2)); // child counts differ
	static_cast<SceneNodeMetaData*>(m2.getPointer())->addChildNode(node(3, "child"));
	EXPECT_TRUE(m1->isEqual(*m2));
	m1->author = "y";
	EXPECT_FALSE(m1->isEqual(*m2));
}

TEST(SceneNodeRoot, WritesFilesAndReportsProgress)
{
	Reference<SceneNodeRoot> empty(new SceneNodeRoot());
	VelornTest::TempDir dir;
	CountingListener silent;
	empty->writeToFile(dir.file("empty.vls"), false, &silent);
	EXPECT_TRUE(silent.reported.empty());

	Reference<SceneNodeRoot> root(new SceneNodeRoot());
	for(int i = 0; i < 128; ++i)
		root->addChildNode(node(3));
	CountingListener listener;
	root->writeToFile(dir.file("many.vls"), false, &listener);
	// Fractions i/128 are reported when they pass the last one by more
	// than 0.01, so every second one from 2/128 on, and never 1.
	ASSERT_EQ(listener.reported.size(), 63u);
	EXPECT_EQ(listener.reported.front(), 2.0f / 128.0f);
	EXPECT_EQ(listener.reported[1], 4.0f / 128.0f);
	EXPECT_EQ(listener.reported.back(), 126.0f / 128.0f);

	EXPECT_EQ(VelornTest::failureOf([&] { root->writeToFile(dir.file("missing/dir/x.vls"), false, nullptr); }),
		"Failed to open file '" + dir.file("missing/dir/x.vls") + "' for writing.");
}
