#include "c4d/atom_array.h"
#include "c4d/base_document.h"
#include "c4d/base_shader.h"
#include "c4d/base_tag.h"
#include "c4d/description.h"
#include "c4d/events.h"
#include "c4d/geometry_test_helpers.h"
#include "c4d/messages.h"
#include "c4d/plugin_test_helpers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

const int32_t pluginMaterial = 1990001, pluginShader = 1990002;

// Every message and parameter call the plug-in saw, as "name:what".
std::vector<std::string> calls;

// A plug-in that keeps parameter 1 to itself, refuses writes of
// parameter 2, and notes the rest.
class Recording : public NodeData
{
public:
	static NodeData* Alloc() { return new Recording(); }

	bool Message(GeListNode* node, int32_t type, void*) override
	{
		calls.push_back(name(node) + ":message " + std::to_string(type));
		return type != 99;
	}
	bool GetDParameter(GeListNode*, const DescID& id, GeData& t_data, int32_t& flags) override
	{
		if(id[0].id == 1)
		{
			t_data = GeData(int32_t(42));
			flags |= DESCFLAGS_GET_PARAM_GET;
		}
		return true;
	}
	bool SetDParameter(GeListNode* node, const DescID& id, const GeData&, int32_t&) override
	{
		calls.push_back(name(node) + ":set " + std::to_string(id[0].id));
		return id[0].id != 2;
	}

private:
	static std::string name(GeListNode* node) { return static_cast<BaseList2D*>(node)->GetName().GetStdString(); }
};

void registerRecording()
{
	PluginRegistry::get().clear();
	ASSERT_TRUE(RegisterMaterialPlugin(pluginMaterial, String("M"), 0, Recording::Alloc, String("Mtest"), 0));
	ASSERT_TRUE(RegisterShaderPlugin(pluginShader, String("S"), 0, Recording::Alloc, String("Xtest"), 0));
}

template<typename T>
T* named(T* node, const char* name)
{
	node->SetName(name);
	return node;
}

} // namespace

TEST(NodeServices, LinksReadEmptyOnceTheirNodeIsFreedAndReadByType)
{
	Owned<BaseDocument> doc(BaseDocument::Alloc());
	BaseMaterial* mat = BaseMaterial::Alloc(Mmaterial);
	doc->InsertMaterial(mat);
	BaseShader* sh = BaseShader::Alloc(Xcolor);
	mat->InsertShader(sh);
	BaseContainer bc;
	bc.SetLink(1, mat);
	bc.SetLink(2, sh);

	// Reading by base type is held by the document file tests.
	EXPECT_EQ(bc.GetLink(1, doc.get(), Mmaterial), mat);
	EXPECT_EQ(bc.GetLink(2, doc.get()), sh);

	const BaseContainer copy = bc;
	BaseMaterial::Free(mat);
	EXPECT_EQ(bc.GetLink(1), nullptr);
	EXPECT_EQ(bc.GetLink(2), nullptr) << "the shader went with its material";
	EXPECT_EQ(copy.GetLink(1, doc.get(), Mbase), nullptr);
	EXPECT_EQ(bc.GetData(1).GetType(), DA_ALIASLINK) << "an empty link is still a link";
	EXPECT_EQ(GeData(int32_t(3)).GetLink(sh), sh) << "no link gives the preset";
}

TEST(NodeServices, DocumentOfNodesThroughListsAndOwners)
{
	Owned<BaseDocument> doc(BaseDocument::Alloc());
	BaseObject* parent = BaseObject::Alloc(Onull);
	doc->InsertObject(parent, nullptr, nullptr);
	BaseObject* child = BaseObject::Alloc(Onull);
	doc->InsertObject(child, parent, nullptr);
	BaseTag* tag = child->MakeTag(Tphong);
	BaseMaterial* mat = BaseMaterial::Alloc(Mmaterial);
	doc->InsertMaterial(mat);
	BaseShader* outer = BaseShader::Alloc(Xcolor);
	mat->InsertShader(outer);
	BaseShader* inner = BaseShader::Alloc(Xcolor);
	outer->InsertShader(inner);

	for(BaseList2D* node : std::vector<BaseList2D*>{parent, child, tag, mat, outer, inner, doc.get()})
		EXPECT_EQ(node->GetDocument(), doc.get()) << node->GetType();
	Owned<BaseMaterial> free(BaseMaterial::Alloc(Mmaterial));
	BaseShader* freeShader = BaseShader::Alloc(Xcolor);
	free->InsertShader(freeShader);
	EXPECT_EQ(free->GetDocument(), nullptr);
	EXPECT_EQ(freeShader->GetDocument(), nullptr);
}

TEST(NodeServices, ClonesCopyShadersAndPointTheirLinksToTheCopies)
{
	Owned<BaseDocument> doc(BaseDocument::Alloc());
	LayerObject* layer = LayerObject::Alloc();
	doc->GetLayerObjectRoot()->InsertLast(layer);
	BaseMaterial* mat = named(BaseMaterial::Alloc(Mmaterial), "Oak");
	doc->InsertMaterial(mat);
	mat->SetLayerObject(layer);
	BaseShader* outer = named(BaseShader::Alloc(Xcolor), "Outer");
	mat->InsertShader(outer);
	BaseShader* inner = named(BaseShader::Alloc(Xbitmap), "Inner");
	outer->InsertShader(inner);
	BaseShader* foreign = BaseShader::Alloc(Xcolor);
	doc->GetFirstMaterial()->InsertShader(foreign, outer);
	mat->GetDataInstance()->SetLink(MATERIAL_COLOR_SHADER, outer);
	BaseContainer nested;
	nested.SetLink(1, inner);
	mat->GetDataInstance()->SetContainer(9000, nested);
	outer->GetDataInstance()->SetLink(5, inner);
	BaseMaterial* other = BaseMaterial::Alloc(Mmaterial);
	doc->InsertMaterial(other);
	mat->GetDataInstance()->SetLink(9001, other);

	Owned<BaseMaterial> copy(mat->GetClone());
	ASSERT_TRUE(copy);
	EXPECT_EQ(copy->GetName(), String("Oak"));
	EXPECT_EQ(copy->GetLayerObject(doc.get()), layer);
	BaseShader* outerCopy = copy->GetFirstShader();
	ASSERT_TRUE(outerCopy && outerCopy != outer);
	EXPECT_EQ(outerCopy->GetName(), String("Outer"));
	BaseShader* innerCopy = outerCopy->GetDown();
	ASSERT_TRUE(innerCopy && innerCopy != inner);
	EXPECT_EQ(innerCopy->GetType(), Xbitmap);
	EXPECT_NE(outerCopy->GetNext(), nullptr) << "every shader of the material is copied";
	EXPECT_EQ(copy->GetDataInstance()->GetLink(MATERIAL_COLOR_SHADER), outerCopy);
	EXPECT_EQ(copy->GetDataInstance()->GetContainer(9000).GetLink(1), innerCopy);
	EXPECT_EQ(outerCopy->GetDataInstance()->GetLink(5), innerCopy);
	EXPECT_EQ(copy->GetDataInstance()->GetLink(9001), other) << "links outside the copy stay";
	EXPECT_EQ(mat->GetDataInstance()->GetLink(MATERIAL_COLOR_SHADER), outer) << "the original is untouched";
	EXPECT_EQ(outer->GetDataInstance()->GetLink(5), inner);

	Owned<BaseShader> shaderCopy(outer->GetClone());
	EXPECT_EQ(shaderCopy->GetDataInstance()->GetLink(5), shaderCopy->GetDown());
}

TEST(NodeServices, UndoGroupsActiveMaterialsAndEvents)
{
	Owned<BaseDocument> doc(BaseDocument::Alloc());
	BaseMaterial* a = named(BaseMaterial::Alloc(Mmaterial), "A");
	BaseMaterial* b = named(BaseMaterial::Alloc(Mmaterial), "B");
	doc->InsertMaterial(a);
	doc->InsertMaterial(b, a);

	EXPECT_FALSE(doc->AddUndo(UNDOTYPE_NEW, a)) << "no group is open";
	doc->StartUndo();
	doc->AddUndo(UNDOTYPE_NEW, a);
	doc->StartUndo();
	doc->AddUndo(UNDOTYPE_CHANGE, b);
	doc->EndUndo();
	EXPECT_TRUE(doc->IsUndoOpen()) << "the inner pair does not close the group";
	a->SetName("renamed");
	doc->EndUndo();
	EXPECT_FALSE(doc->EndUndo());
	ASSERT_EQ(doc->GetUndoGroups().size(), 1u);
	const std::vector<UndoEntry>& group = doc->GetUndoGroups()[0];
	ASSERT_EQ(group.size(), 2u);
	EXPECT_EQ(group[0].type, UNDOTYPE_NEW);
	EXPECT_EQ(group[0].node, a);
	EXPECT_EQ(group[0].name, String("A")) << "the name when the entry was made";
	EXPECT_EQ(group[1].type, UNDOTYPE_CHANGE);

	auto active = [&]() {
		AtomArray selection;
		doc->GetActiveMaterials(selection);
		std::string names;
		for(int32_t i = 0; i < selection.GetCount(); ++i)
			names += static_cast<BaseList2D*>(selection.GetIndex(i))->GetName().GetStdString() + " ";
		return names;
	};
	doc->SetActiveMaterial(b);
	doc->SetActiveMaterial(a, SELECTION_ADD);
	EXPECT_EQ(active(), "renamed B ") << "in list order";
	doc->SetActiveMaterial(a, SELECTION_SUB);
	EXPECT_EQ(active(), "B ");
	doc->SetActiveMaterial(nullptr);
	EXPECT_EQ(active(), "");

	const int32_t before = EventCount();
	EventAdd();
	EventAdd();
	EXPECT_EQ(EventCount(), before + 2);
}

TEST(NodeServices, ParametersAndMessagesGoThroughThePlugin)
{
	registerRecording();
	calls.clear();
	Owned<BaseMaterial> mat(named(BaseMaterial::Alloc(pluginMaterial), "mat"));
	ASSERT_TRUE(mat);
	BaseShader* sh = named(BaseShader::Alloc(pluginShader), "shader");
	mat->InsertShader(sh);

	GeData value;
	mat->GetDataInstance()->SetInt32(1, 7);
	ASSERT_TRUE(mat->GetParameter(DescID(1), value));
	EXPECT_EQ(value.GetInt32(), 42) << "the plug-in answered";
	ASSERT_TRUE(mat->SetParameter(DescID(3), GeData(2.5)));
	ASSERT_TRUE(mat->GetParameter(DescID(3), value));
	EXPECT_EQ(value.GetFloat(), 2.5) << "the host stored and read the container";
	EXPECT_FALSE(mat->SetParameter(DescID(2), GeData(int32_t(1))));
	EXPECT_EQ(mat->GetDataInstance()->GetData(2).GetType(), DA_NIL) << "a refused write stores nothing";

	EXPECT_TRUE(mat->Message(MSG_UPDATE));
	EXPECT_FALSE(HandleShaderMessage(mat.get(), sh, 99, nullptr));
	EXPECT_TRUE(HandleShaderMessage(mat.get(), nullptr, 99, nullptr));
	EXPECT_EQ(calls, (std::vector<std::string>{"mat:set 3", "mat:set 2", "mat:message 5", "shader:message 99"}));

	Owned<BaseMaterial> standard(BaseMaterial::Alloc(Mmaterial));
	EXPECT_TRUE(standard->Message(99)) << "host nodes take every message";
	EXPECT_TRUE(standard->GetChannelState(CHANNEL_COLOR));
	EXPECT_FALSE(standard->GetChannelState(CHANNEL_LUMINANCE));
	mat->GetDataInstance()->SetBool(MATERIAL_USE_COLOR, true);
	EXPECT_FALSE(mat->GetChannelState(CHANNEL_COLOR)) << "only the standard material has channels";
	PluginRegistry::get().clear();
}

TEST(NodeServices, CaseFolding)
{
	EXPECT_EQ(String("Sin_BF5.NK").ToLower(), String("sin_bf5.nk"));
	EXPECT_EQ(String("ÄÖÜ×Þ").ToLower(), String("äöü×þ"));
	EXPECT_EQ(String("ΩЖ").ToLower(), String("ΩЖ")) << "beyond Latin-1 nothing folds";
}
