#include "c4d/base_material.h"
#include "c4d/base_shader.h"
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
