#include "materials/channel_bake.h"

#include "c4d/base_bitmap.h"
#include "c4d/base_shader.h"
#include "c4d/console.h"
#include "c4d/host_clock.h"
#include "materials/material_export_test_helpers.h"

#include "scene/materials_basic.h"
#include "scene/materials_composite.h"
#include "support/file_utils.h"
#include "support/test_files.h"

#include <regex>
#include <string>
#include <vector>

namespace
{

// Material export of plug-in materials whose channels hold shaders that
// the scene cannot describe, into a scene beside a document in a folder of
// its own.
class ChannelBakeTest : public MaterialExportTest
{
protected:
	void SetUp() override
	{
		MaterialExportTest::SetUp();
		doc->SetDocumentPath(Filename(dir.path().c_str()));
		exportTo(dir.file("scene.vls"), nullptr);
		HostConsole::get().clear();
	}
	void TearDown() override
	{
		HostClock::get().release();
		MaterialExportTest::TearDown();
	}

	VelornTest::TempDir dir;
};

} // namespace

// A host shader in the albedo channel is baked at the material's bake size
// into NAME_<timer>_albedo.jpg in the textures folder, recorded among the
// temporary files, and the albedo is a texture of that file, which holds
// the shader's colour.
TEST_F(ChannelBakeTest, ForeignShaderBakesToATexture)
{
	BaseMaterial* paint = newMaterial(MAT_TYPE_DIFFUSE, "Paint");
	linkColour(paint, MAT_ALBEDO_LINK, Vector(0.2, 0.4, 0.8));
	paint->GetDataInstance()->SetInt32(MAT_BAKE_WIDTH, 12);
	paint->GetDataInstance()->SetInt32(MAT_BAKE_HEIGHT, 6);
	paint->GetDataInstance()->SetFloat(MAT_ALBEDO_EXPONENT, 1.8);

	for(const bool temporary : {false, true})
	{
		SCOPED_TRACE(temporary ? "temporary files" : "textures beside the scene");
		exportTo(dir.file("scene.vls"), temporary ? &temp_files : nullptr);
		const auto& diffuse = materialOf<Velorn::DiffuseMaterial>(exportMaterial(paint));

		const auto* albedo = dynamic_cast<const Velorn::TextureWavelengthDependentParam*>(diffuse.albedo.getPointer());
		ASSERT_NE(albedo, nullptr);
		ASSERT_EQ(diffuse.textures.size(), 1u);
		EXPECT_EQ(albedo->texture_index, 0);
		const Velorn::Texture& texture = diffuse.textures[0];
		const std::string path = texture.path.str();
		EXPECT_EQ(Velorn::FileUtils::getDirectory(path), settings->textures_dir.GetString().GetStdString());
		EXPECT_TRUE(std::regex_match(Velorn::FileUtils::getFilename(path), std::regex("Paint_[0-9]+_albedo\\.jpg")))
			<< path;
		EXPECT_EQ(texture.exponent, 1.8);
		if(temporary)
		{
			ASSERT_EQ(temp_files.size(), 1u);
			EXPECT_EQ(temp_files[0].GetString().GetStdString(), path);
		}

		BaseBitmap baked;
		ASSERT_EQ(baked.Init(Filename(path.c_str())), IMAGERESULT_OK);
		EXPECT_EQ(baked.GetBw(), 12);
		EXPECT_EQ(baked.GetBh(), 6);
		uint16_t r, g, b;
		baked.GetPixel(7, 3, &r, &g, &b);
		// 0.2, 0.4 and 0.8 of 255.
		EXPECT_NEAR(r, 51, 2);
		EXPECT_NEAR(g, 102, 2);
		EXPECT_NEAR(b, 204, 2);
		if(temporary)
			Velorn::FileUtils::deleteFile(path);
	}
	EXPECT_TRUE(HostConsole::get().texts(HostConsole::Kind::Print).empty());
}

// The file name is the timer's reading; two channels that share a suffix
// within one millisecond take the next value rather than one file.
TEST_F(ChannelBakeTest, SharedSuffixesTakeTheNextTimerValue)
{
	HostClock::get().fixTime(5000);
	BaseMaterial* thin = newMaterial(MAT_TYPE_DOUBLE_SIDED_THIN, "Sheet");
	thin->GetDataInstance()->SetBool(MAT_USE_ROUGHNESS, true);
	thin->GetDataInstance()->SetBool(MAT_USE_BACK_ROUGHNESS, true);
	linkColour(thin, 12000 + 16, Vector(0.2, 0.2, 0.2));
	linkColour(thin, 15000 + 16, Vector(0.6, 0.6, 0.6));
	thin->GetDataInstance()->SetInt32(MAT_BAKE_WIDTH, 4);
	thin->GetDataInstance()->SetInt32(MAT_BAKE_HEIGHT, 4);
	const auto& sides = materialOf<Velorn::DoubleSidedThinMaterial>(exportMaterial(thin));
	ASSERT_EQ(sides.textures.size(), 2u);
	const std::string folder = settings->textures_dir.GetString().GetStdString();
	EXPECT_EQ(sides.textures[0].path.str(), Velorn::FileUtils::join(folder, "Sheet_5000_sigma.jpg"));
	EXPECT_EQ(sides.textures[1].path.str(), Velorn::FileUtils::join(folder, "Sheet_5001_sigma.jpg"));
	BaseBitmap back;
	ASSERT_EQ(back.Init(Filename(sides.textures[1].path.str().c_str())), IMAGERESULT_OK);
	uint16_t r, g, b;
	back.GetPixel(1, 1, &r, &g, &b);
	// 0.6 of 255.
	EXPECT_NEAR(r, 153, 2);
}

// A bake that cannot be saved leaves the channel's constant form, and the
// console says why.
TEST_F(ChannelBakeTest, FailedBakeKeepsTheConstant)
{
	HostClock::get().fixTime(77);
	BaseMaterial* paint = newMaterial(MAT_TYPE_DIFFUSE, "Paint");
	linkColour(paint, MAT_ALBEDO_LINK, Vector(1, 0, 0));
	paint->GetDataInstance()->SetInt32(MAT_BAKE_WIDTH, 4);
	paint->GetDataInstance()->SetInt32(MAT_BAKE_HEIGHT, 4);
	settings->textures_dir = Filename(dir.file("gone").c_str());
	const auto& diffuse = materialOf<Velorn::DiffuseMaterial>(exportMaterial(paint));
	EXPECT_NE(dynamic_cast<const Velorn::ConstantWavelengthDependentParam*>(diffuse.albedo.getPointer()), nullptr);
	EXPECT_TRUE(diffuse.textures.empty());
	const std::string file = Velorn::FileUtils::join(dir.file("gone"), "Paint_77_albedo.jpg");
	const std::vector<String> printed = HostConsole::get().texts(HostConsole::Kind::Print);
	ASSERT_EQ(printed.size(), 1u);
	EXPECT_EQ(printed[0].GetStdString(), "Material 'Paint': the shader 'Tint' could not be baked into '" + file +
			"' (image error 4); the channel was exported without the shader.");
}

// In a preview, a bake larger than 262144 pixels is scaled down on both
// sides by the square root of the ratio, truncated.
TEST(ChannelBakeSize, PreviewLimit)
{
	const struct
	{
		int32_t width, height;
		bool preview;
		int32_t expectedWidth, expectedHeight;
	} cases[] = {
		{1024, 1024, true, 512, 512},
		// sqrt(1/2) of 1024 and 512: 724.08 and 362.04.
		{1024, 512, true, 724, 362},
		{512, 512, true, 512, 512},
		{1024, 1024, false, 1024, 1024},
		// A quarter of 2^22, and at least one row.
		{4194304, 1, true, 1048576, 1},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(std::to_string(c.width) + " x " + std::to_string(c.height));
		BaseContainer data;
		data.SetInt32(MAT_BAKE_WIDTH, c.width);
		data.SetInt32(MAT_BAKE_HEIGHT, c.height);
		int32_t width = 0, height = 0;
		channelBakeSize(data, c.preview, width, height);
		EXPECT_EQ(width, c.expectedWidth);
		EXPECT_EQ(height, c.expectedHeight);
	}
}
