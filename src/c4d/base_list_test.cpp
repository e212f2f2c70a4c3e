#include "c4d/base_list.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace
{

// Nodes named by one letter, so that an order reads as a word.
struct Node : TypedList2D<Node>
{
	explicit Node(const char* name) : TypedList2D(1) { SetName(name); }
};

// The names of first and its next siblings, with the children of each in
// brackets: "a(bc)d".
std::string order(const Node* first)
{
	std::string text;
	for(const Node* node = first; node; node = node->GetNext())
	{
		text += node->GetName().GetStdString();
		if(node->GetDown())
			text += "(" + order(node->GetDown()) + ")";
	}
	return text;
}

// The names from last back to first by GetPred, to check the links both ways.
std::string backwards(const Node* last)
{
	std::string text;
	for(const Node* node = last; node; node = node->GetPred())
		text += node->GetName().GetStdString();
	return text;
}

} // namespace

TEST(GeListNode, InsertsAndRemovesInOrder)
{
	GeListHead head(nullptr);
	Node* a = new Node("a");
	Node* b = new Node("b");
	Node* c = new Node("c");
	Node* d = new Node("d");
	Node* e = new Node("e");
	head.InsertLast(a);
	const struct
	{
		std::function<void()> step;
		const char* expected;
	} steps[] = {
		{[&] { head.InsertLast(b); }, "ab"},
		{[&] { head.InsertFirst(c); }, "cab"},
		{[&] { d->InsertAfter(c); }, "cdab"},
		{[&] { e->InsertBefore(c); }, "ecdab"},
		{[&] { b->InsertUnder(a); }, "ecda(b)"},
		{[&] { c->InsertUnderLast(a); }, "eda(bc)"},
		{[&] { e->InsertUnder(a); }, "da(ebc)"},
		{[&] { d->InsertAfter(b); }, "a(ebdc)"},
		{[&] { e->InsertBefore(a); }, "ea(bdc)"},
		{[&] { d->Remove(); }, "ea(bc)"},
		{[&] { head.Insert(d, nullptr); }, "dea(bc)"},
		{[&] { head.Insert(b, e); }, "deba(c)"},
		{[&] { a->InsertAfter(a); }, "deba(c)"},
		{[&] { c->InsertUnder(c->GetUp()); }, "deba(c)"},
	};
	for(const auto& s : steps)
	{
		SCOPED_TRACE(s.expected);
		s.step();
		const Node* first = static_cast<Node*>(head.GetFirst());
		const Node* last = static_cast<Node*>(head.GetLast());
		EXPECT_EQ(order(first), s.expected);
		std::string top;
		for(const Node* node = first; node; node = node->GetNext())
			top += node->GetName().GetStdString();
		EXPECT_EQ(backwards(last), std::string(top.rbegin(), top.rend()));
	}
}

TEST(GeListNode, Links)
{
	GeListHead head(nullptr);
	Node* a = new Node("a");
	Node* b = new Node("b");
	Node* c = new Node("c");
	head.InsertLast(a);
	b->InsertUnderLast(a);
	c->InsertUnderLast(a);
	const struct
	{
		const Node* node;
		const Node *next, *pred, *up, *down, *downLast;
		const GeListHead* head;
	} cases[] = {
		{a, nullptr, nullptr, nullptr, b, c, &head},
		{b, c, nullptr, a, nullptr, nullptr, nullptr},
		{c, nullptr, b, a, nullptr, nullptr, nullptr},
	};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.node->GetName().GetStdString());
		EXPECT_EQ(t.node->GetNext(), t.next);
		EXPECT_EQ(t.node->GetPred(), t.pred);
		EXPECT_EQ(t.node->GetUp(), t.up);
		EXPECT_EQ(t.node->GetDown(), t.down);
		EXPECT_EQ(t.node->GetDownLast(), t.downLast);
		EXPECT_EQ(t.node->GetListHead(), t.head);
	}
	b->Remove();
	EXPECT_EQ(b->GetUp(), nullptr);
	EXPECT_EQ(b->GetNext(), nullptr);
	EXPECT_EQ(c->GetPred(), nullptr);
	Node::Free(b);
	EXPECT_EQ(b, nullptr);
}

// Each case leaves nodes in various places; the sanitizer build checks that
// none leaks and none is deleted twice.
TEST(GeListNode, OwnershipFreesEachNodeOnce)
{
	{
		// The head deletes its nodes and their children.
		GeListHead head(nullptr);
		Node* a = new Node("a");
		head.InsertLast(a);
		(new Node("b"))->InsertUnder(a);
		head.InsertLast(new Node("c"));
	}
	GeListHead head(nullptr);
	Node* a = new Node("a");
	Node* b = new Node("b");
	head.InsertLast(a);
	head.InsertLast(b);
	(new Node("c"))->InsertUnder(b);
	// Free takes a node in a list out first, and deletes its children.
	Node::Free(b);
	EXPECT_EQ(order(static_cast<Node*>(head.GetFirst())), "a");
	// A removed node is the caller's.
	a->Remove();
	EXPECT_EQ(head.GetFirst(), nullptr);
	Node::Free(a);
	Node* none = nullptr;
	Node::Free(none);
	EXPECT_EQ(none, nullptr);
}

TEST(BaseList2D, SetDataReplacesTheContainerAndBitsAreKeptApart)
{
	Node node("n");
	node.GetDataInstance()->SetInt32(1001, 7);
	BaseContainer bc;
	bc.SetFloat(5, 0.5);
	node.SetData(bc);
	EXPECT_EQ(node.GetData(), bc);
	node.SetBit(BIT_ACTIVE);
	node.SetBit(1 << 4);
	EXPECT_EQ(node.GetAllBits(), BIT_ACTIVE | 1 << 4);
	node.DelBit(BIT_ACTIVE);
	EXPECT_FALSE(node.GetBit(BIT_ACTIVE));
	EXPECT_EQ(node.GetAllBits(), 1 << 4);
}
