#pragma once

#include "c4d/base_shader.h"
#include "c4d/plugin_registry.h"
#include "c4d/resources.h"
#include "shaders/shader_ids.h"
#include "shaders/shader_plugins.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using ShaderValues = std::vector<std::pair<int32_t, GeData>>;

// The plug-in's five shaders registered, with the module's resources read
// from the source tree.
class ShaderTest : public testing::Test
{
protected:
	void SetUp() override
	{
		PluginRegistry::get().clear();
		ASSERT_TRUE(HostResources::get().init(Filename(String(VelornTest::testDataPath("../src/host")))))
			<< HostResources::get().error().GetStdString();
		ASSERT_TRUE(RegisterVslShader() && RegisterVslNoise() && RegisterVslBlend() && RegisterVslGradient() &&
			RegisterVslNormal());
	}

	void TearDown() override
	{
		for(BaseShader* sh : made)
			BaseShader::Free(sh);
		PluginRegistry::get().clear();
		HostResources::get().clear();
	}

	// A shader with its Init defaults, then values; owned by owner when
	// given, else freed at the end of the test.
	BaseShader* shader(int32_t type, const ShaderValues& values = {}, BaseList2D* owner = nullptr)
	{
		BaseShader* sh = BaseShader::Alloc(type);
		EXPECT_NE(sh, nullptr);
		for(const auto& [id, value] : values)
			sh->GetDataInstance()->SetData(id, value);
		if(owner)
			owner->InsertShader(sh);
		else
			made.push_back(sh);
		return sh;
	}

	static VslShaderData* data(BaseShader* sh) { return dynamic_cast<VslShaderData*>(sh->GetNodeData()); }

	std::vector<BaseShader*> made;
};
