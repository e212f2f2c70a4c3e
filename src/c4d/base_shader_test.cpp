#include "c4d/base_document.h"
#include "c4d/base_material.h"
#include "c4d/base_shader.h"
#include "c4d/geometry_test_helpers.h"
#include "c4d/plugin_registry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

// The nodes whose plug-in data was freed, in order, each marked "owned"
// when its owner still held its shaders at that moment.
std::vector<std::string> freed;

template<typename Base>
class Noting : public Base
{
public:
	static NodeData* Alloc() { return new Noting(); }

	void Free(GeListNode* node) override
	{
		const BaseList2D* n = static_cast<BaseList2D*>(node);
		const GeListNode* owner = n->GetUp() ? n->GetUp() : n->GetListHead() ? n->GetListHead()->GetMain() : nullptr;
		const bool owned = owner && static_cast<const BaseList2D*>(owner)->GetFirstShader();
		freed.push_back(n->GetName().GetStdString() + (owned ? " owned" : ""));
	}
};

BaseShader* named(int32_t type, const char* name)
{
	BaseShader* sh = BaseShader::Alloc(type);
	sh->SetName(name);
	return sh;
}

} // namespace

TEST(BaseShader, TypesOwnersAndFreeingOrder)
{
	PluginRegistry::get().clear();
	const int32_t blendId = 1024769, materialId = 1024337;
	EXPECT_EQ(BaseShader::Alloc(blendId), nullptr);
	EXPECT_FALSE(RegisterShaderPlugin(blendId, String("VSL Blend"), 0, nullptr, String("xvslblend"), 0));
	ASSERT_TRUE(RegisterShaderPlugin(blendId, String("VSL Blend"), 0, Noting<ShaderData>::Alloc, String("xvslblend"), 0));
	EXPECT_EQ(PluginRegistry::get().find(blendId)->kind, PluginKind::Shader);
	EXPECT_EQ(BaseMaterial::Alloc(blendId), nullptr);
	PluginRecord material;
	material.kind = PluginKind::Material;
	material.id = materialId;
	material.allocator = Noting<NodeData>::Alloc;
	ASSERT_TRUE(PluginRegistry::get().add(material));

	BaseMaterial* mat = BaseMaterial::Alloc(materialId);
	mat->SetName("Material");
	BaseShader* a = named(blendId, "A");
	BaseShader* b = named(blendId, "B");
	BaseShader* c = named(Xcolor, "C");
	ASSERT_NE(c, nullptr);
	mat->InsertShader(b);
	mat->InsertShader(a);
	mat->InsertShader(c, b);
	EXPECT_EQ(mat->GetFirstShader(), a);
	EXPECT_EQ(a->GetNext(), b);
	EXPECT_EQ(b->GetNext(), c);
	EXPECT_EQ(mat->GetDown(), nullptr);

	// A shader's own shaders are its children.
	BaseShader* inner = named(blendId, "Inner");
	a->InsertShader(inner);
	a->InsertShader(named(Xbitmap, "Bitmap"), inner);
	EXPECT_EQ(a->GetFirstShader(), inner);
	EXPECT_EQ(inner->GetUp(), a);
	EXPECT_EQ(inner->GetNext()->GetName(), String("Bitmap"));

	// The material frees its shaders with it, deepest first, while each
	// owner still holds them, and its own data last.
	BaseMaterial::Free(mat);
	EXPECT_EQ(freed, (std::vector<std::string>{"Inner owned", "A owned", "B owned", "Material"}));
	PluginRegistry::get().clear();
}

namespace
{

// Counts the render calls the host passes on, and answers Output with the
// sample's coordinates times the document's presence.
class Sampling : public ShaderData
{
public:
	static NodeData* Alloc() { return new Sampling(); }

	INITRENDERRESULT InitRender(BaseShader*, const InitRenderStruct& irs) override
	{
		calls.push_back(irs.doc ? "init with document" : "init");
		return INITRENDERRESULT_ASSETMISSING;
	}
	void FreeRender(BaseShader*) override { calls.push_back("free"); }
	Vector Output(BaseShader*, ChannelData* cd) override
	{
		calls.push_back(cd->vd ? "output with point" : "output");
		return cd->p * 2;
	}
	int32_t GetRenderInfo(BaseShader*) override { return 16; }

	static std::vector<std::string> calls;
};

std::vector<std::string> Sampling::calls;

} // namespace

TEST(BaseShader, RenderCallsGoToThePluginOrTheHostShader)
{
	PluginRegistry::get().clear();
	const int32_t id = 1024770;
	ASSERT_TRUE(RegisterShaderPlugin(id, String("Sampling"), 0, Sampling::Alloc, String(), 0));
	Sampling::calls.clear();

	Owned<BaseShader> plugin(BaseShader::Alloc(id));
	Owned<BaseDocument> doc(BaseDocument::Alloc());
	EXPECT_EQ(plugin->InitRender(InitRenderStruct(doc.get())), INITRENDERRESULT_ASSETMISSING);
	ChannelData cd;
	cd.p = Vector(0.25, 0.5, 1);
	EXPECT_EQ(plugin->Sample(&cd), Vector(0.5, 1, 2));
	VolumeData vd;
	cd.vd = &vd;
	plugin->Sample(&cd);
	plugin->FreeRender();
	EXPECT_EQ(plugin->GetRenderInfo(), 16);
	EXPECT_EQ(Sampling::calls,
		(std::vector<std::string>{"init with document", "output", "output with point", "free"}));

	// The host's colour shader gives its colour wherever it is sampled;
	// the bitmap shader answers black until images can be sampled.
	Owned<BaseShader> colour(BaseShader::Alloc(Xcolor));
	colour->GetDataInstance()->SetVector(COLORSHADER_COLOR, Vector(0.1, 0.2, 0.3));
	EXPECT_EQ(colour->InitRender(InitRenderStruct()), INITRENDERRESULT_OK);
	EXPECT_EQ(colour->Sample(&cd), Vector(0.1, 0.2, 0.3));
	EXPECT_EQ(colour->GetRenderInfo(), 0);
	colour->FreeRender();
	EXPECT_EQ(Owned<BaseShader>(BaseShader::Alloc(Xbitmap))->Sample(&cd), Vector(0, 0, 0));

	// A plug-in without render calls of its own: success and black.
	ASSERT_TRUE(RegisterShaderPlugin(1024768, String("Plain"), 0, []() -> NodeData* { return new ShaderData(); },
		String(), 0));
	Owned<BaseShader> plain(BaseShader::Alloc(1024768));
	EXPECT_EQ(plain->InitRender(InitRenderStruct()), INITRENDERRESULT_OK);
	EXPECT_EQ(plain->Sample(&cd), Vector(0, 0, 0));
	PluginRegistry::get().clear();
}
