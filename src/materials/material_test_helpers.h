#pragma once

#include "c4d/base_document.h"
#include "c4d/base_material.h"
#include "c4d/base_shader.h"
#include "c4d/description.h"
#include "c4d/messages.h"
#include "c4d/plugin_registry.h"
#include "c4d/resources.h"
#include "host/plugin_ids.h"
#include "materials/material_ids.h"
#include "materials/material_plugin.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using Values = std::vector<std::pair<int32_t, GeData>>;

inline void expectNearVector(const Vector& got, const Vector& want, double tolerance = 1e-12)
{
	EXPECT_NEAR(got.x, want.x, tolerance);
	EXPECT_NEAR(got.y, want.y, tolerance);
	EXPECT_NEAR(got.z, want.z, tolerance);
}

// Each value of expected in data, of the same stored type (a long is no
// real); reals to 1e-9.
inline void expectValues(const BaseContainer& data, const Values& expected)
{
	for(const auto& [id, value] : expected)
	{
		const GeData& got = data.GetData(id);
		EXPECT_EQ(got.GetType(), value.GetType()) << "parameter " << id;
		if(value.GetType() == DA_REAL)
			EXPECT_NEAR(got.GetFloat(), value.GetFloat(), 1e-9) << "parameter " << id;
		else
			EXPECT_TRUE(got == value) << "parameter " << id;
	}
}

// A document with the plug-in's material registered and the module's
// resources (strings and description files) read from the source tree.
class MaterialTest : public testing::Test
{
protected:
	void SetUp() override
	{
		PluginRegistry::get().clear();
		ASSERT_TRUE(HostResources::get().init(Filename(String(VelornTest::testDataPath("../src/host")))))
			<< HostResources::get().error().GetStdString();
		ASSERT_TRUE(RegisterVelornMaterial());
		doc = BaseDocument::Alloc();
	}

	void TearDown() override
	{
		BaseDocument::Free(doc);
		PluginRegistry::get().clear();
		HostResources::get().clear();
	}

	// A new material of the kind, last in the document, with the kind's
	// switches as the kind switch rule sets them.
	BaseMaterial* newMaterial(int32_t kind = MAT_TYPE_DIFFUSE, const char* name = "")
	{
		BaseMaterial* mat = BaseMaterial::Alloc(ID_VELORN_MATERIAL);
		EXPECT_NE(mat, nullptr);
		mat->SetName(String(name));
		doc->InsertMaterial(mat, lastMaterial());
		if(kind != MAT_TYPE_DIFFUSE)
		{
			mat->SetParameter(DescID(MAT_TYPE), GeData(kind));
			mat->Message(MSG_DESCRIPTION_VALIDATE);
		}
		return mat;
	}

	BaseMaterial* lastMaterial() const
	{
		BaseMaterial* last = doc->GetFirstMaterial();
		while(last && last->GetNext())
			last = last->GetNext();
		return last;
	}

	// A host colour shader owned by mat, linked from its parameter link.
	static BaseShader* linkColour(BaseMaterial* mat, int32_t link, const Vector& colour, const char* name = "Tint")
	{
		BaseShader* shader = BaseShader::Alloc(Xcolor);
		shader->SetName(String(name));
		shader->GetDataInstance()->SetVector(COLORSHADER_COLOR, colour);
		mat->InsertShader(shader);
		mat->GetDataInstance()->SetLink(link, shader);
		return shader;
	}

	static VelornMaterial* plugin(BaseMaterial* mat) { return static_cast<VelornMaterial*>(mat->GetNodeData()); }

	BaseDocument* doc = nullptr;
};
