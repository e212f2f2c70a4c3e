#include "bake/shader_bake.h"

#include "c4d/base_bitmap.h"
#include "c4d/base_document.h"
#include "c4d/picture_test_helpers.h"
#include "shaders/shader_test_helpers.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace
{

// A colour from 0 to 1 as the bytes a bake stores.
Rgb bytesOf(const Vector& colour)
{
	const auto byte = [](double v) { return (int)std::lround(std::clamp(v, 0.0, 1.0) * 255.0); };
	return {byte(colour.x), byte(colour.y), byte(colour.z)};
}

// The plug-in's shaders registered and a source document in a folder of
// its own.
class ShaderBakeTest : public ShaderTest
{
protected:
	void SetUp() override
	{
		ShaderTest::SetUp();
		doc = BaseDocument::Alloc();
		doc->SetDocumentPath(Filename(dir.path().c_str()));
	}
	void TearDown() override
	{
		BaseDocument::Free(doc);
		ShaderTest::TearDown();
	}

	// A 32-bit picture of the size, black, baked from the shader.
	BAKE_TEX_ERR bake(BaseShader* sh, BaseBitmap& target, int32_t width, int32_t height, BaseDocument* source)
	{
		EXPECT_EQ(target.Init(width, height, 32), IMAGERESULT_OK);
		return bakeShaderToBitmap(&target, sh, source);
	}

	VelornTest::TempDir dir;
	BaseDocument* doc = nullptr;
};

} // namespace

// A colour shader fills the whole picture with its colour; the shader
// itself stays the caller's, untouched.
TEST_F(ShaderBakeTest, ColourShaderBakesUniformly)
{
	BaseShader* colour = shader(Xcolor, {{COLORSHADER_COLOR, Vector(0.2, 0.4, 0.8)}});
	BaseBitmap target;
	ASSERT_EQ(bake(colour, target, 16, 8, doc), BAKE_TEX_ERR_NONE);
	// 0.2, 0.4 and 0.8 of 255.
	const Rgb expected = {51, 102, 204};
	for(int32_t y = 0; y < 8; ++y)
	{
		for(int32_t x = 0; x < 16; ++x)
		{
			const Rgb p = pixelOf(target, x, y);
			for(int k = 0; k < 3; ++k)
				EXPECT_NEAR(p[k], expected[k], 2) << x << ", " << y;
		}
	}
	EXPECT_EQ(colour->GetUp(), nullptr);
	EXPECT_EQ(colour->GetDataInstance()->GetVector(COLORSHADER_COLOR), Vector(0.2, 0.4, 0.8));

	// Without a source document too; without a shader or picture, nothing.
	ASSERT_EQ(bake(colour, target, 2, 2, nullptr), BAKE_TEX_ERR_NONE);
	EXPECT_EQ(pixelOf(target, 1, 1), expected);
	EXPECT_EQ(bake(nullptr, target, 2, 2, doc), BAKE_TEX_ERR_TEXTURE_MISSING);
	BaseBitmap empty;
	EXPECT_EQ(bakeShaderToBitmap(&empty, colour, doc), BAKE_TEX_ERR_WRONG_BITMAP);
	EXPECT_EQ(bakeShaderToBitmap(nullptr, colour, doc), BAKE_TEX_ERR_WRONG_BITMAP);
}

// A bitmap shader whose file lies beside the source document gives its
// picture back at pixel centres, v = 0 at the top; a picture twice the size
// shows each pixel twice in each direction.
TEST_F(ShaderBakeTest, BitmapShaderBakesItsPicture)
{
	const auto picture = [](int32_t x, int32_t y) { return Rgb{x * 30, y * 60, 255 - x * y * 9}; };
	BaseBitmap source;
	ASSERT_EQ(source.Init(8, 4), IMAGERESULT_OK);
	for(int32_t y = 0; y < 4; ++y)
		for(int32_t x = 0; x < 8; ++x)
			source.SetPixel(x, y, picture(x, y)[0], picture(x, y)[1], picture(x, y)[2]);
	ASSERT_EQ(source.Save(Filename(dir.file("tiles.png").c_str()), FILTER_PNG, nullptr, SAVEBIT_NONE), IMAGERESULT_OK);
	BaseShader* bitmap = shader(Xbitmap, {{BITMAPSHADER_FILENAME, Filename("tiles.png")}});

	for(const int32_t scale : {1, 2})
	{
		SCOPED_TRACE(scale);
		BaseBitmap target;
		ASSERT_EQ(bake(bitmap, target, 8 * scale, 4 * scale, doc), BAKE_TEX_ERR_NONE);
		for(int32_t y = 0; y < 4 * scale; ++y)
			for(int32_t x = 0; x < 8 * scale; ++x)
				EXPECT_EQ(pixelOf(target, x, y), picture(x / scale, y / scale)) << x << ", " << y;
	}
	// Without the document's folder the relative name finds no file.
	BaseBitmap target;
	EXPECT_EQ(bake(bitmap, target, 8, 4, nullptr), BAKE_TEX_ERR_TEXTURE_MISSING);
}

// The plug-in's noise, in two colours over UV, bakes to what its Output
// gives at each pixel's centre.
TEST_F(ShaderBakeTest, NoiseMatchesItsOutput)
{
	const ShaderValues values = {{VSLNOISE_KIND, VSLNOISE_KIND_FRACTAL}, {VSLNOISE_SPACE, VSLNOISE_SPACE_UV},
		{VSLNOISE_OUTPUT, VSLNOISE_OUTPUT_MIX}, {VSLNOISE_SCALE, Vector(0.4, 0.7, 1)}, {VSLNOISE_GAIN, 1.2},
		{VSLNOISE_COLOUR_A, Vector(1, 0.5, 0)}, {VSLNOISE_COLOUR_B, Vector(0, 0.25, 1)}};
	BaseShader* noise = shader(ID_VSL_NOISE, values);
	const int32_t width = 24, height = 16;
	BaseBitmap target;
	ASSERT_EQ(bake(noise, target, width, height, doc), BAKE_TEX_ERR_NONE);

	ASSERT_EQ(noise->InitRender(InitRenderStruct(doc)), INITRENDERRESULT_OK);
	int lowest = 255, highest = 0;
	for(int32_t y = 0; y < height; ++y)
	{
		for(int32_t x = 0; x < width; ++x)
		{
			ChannelData cd;
			cd.p = Vector((x + 0.5) / width, (y + 0.5) / height, 0);
			const Rgb expected = bytesOf(noise->Sample(&cd));
			const Rgb baked = pixelOf(target, x, y);
			// The UV of a centre may differ in its last bits.
			for(int k = 0; k < 3; ++k)
				EXPECT_NEAR(baked[k], expected[k], 1) << x << ", " << y;
			lowest = std::min(lowest, baked[2]);
			highest = std::max(highest, baked[2]);
		}
	}
	noise->FreeRender();
	// The noise varies over the picture, so a uniform bake cannot pass.
	EXPECT_GT(highest - lowest, 40);
}
