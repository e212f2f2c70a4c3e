#include "c4d/base_bitmap.h"
#include "c4d/base_document.h"
#include "c4d/base_shader.h"

#include "support/test_files.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

// A shader of the host's bitmap type over the file name.
class BitmapShaderTest : public testing::Test
{
protected:
	void SetUp() override
	{
		doc = BaseDocument::Alloc();
		doc->SetDocumentPath(Filename(dir.path().c_str()));
		// Three by two, each pixel a colour of its own.
		BaseBitmap bmp;
		ASSERT_EQ(bmp.Init(3, 2), IMAGERESULT_OK);
		for(int32_t y = 0; y < 2; ++y)
			for(int32_t x = 0; x < 3; ++x)
				bmp.SetPixel(x, y, 51 * x, 102 * y, 255);
		ASSERT_EQ(bmp.Save(Filename(dir.file("grid.png").c_str()), FILTER_PNG, nullptr, SAVEBIT_NONE), IMAGERESULT_OK);
		VelornTest::writeFile(dir.file("notes.png"), "no picture");
	}
	void TearDown() override
	{
		BaseShader::Free(shader);
		BaseDocument::Free(doc);
	}

	BaseShader* bitmap(const std::string& name)
	{
		BaseShader::Free(shader);
		shader = BaseShader::Alloc(Xbitmap);
		shader->GetDataInstance()->SetFilename(BITMAPSHADER_FILENAME, Filename(name.c_str()));
		return shader;
	}

	Vector sample(double u, double v)
	{
		ChannelData cd;
		cd.p = Vector(u, v, 0);
		return shader->Sample(&cd);
	}

	// The colour of pixel (x, y) of grid.png, from 0 to 1.
	static Vector grid(int32_t x, int32_t y) { return Vector(51 * x, 102 * y, 255) / 255.0; }

	VelornTest::TempDir dir;
	BaseDocument* doc = nullptr;
	BaseShader* shader = nullptr;
};

} // namespace

// Each point takes the pixel whose area holds it, v = 0 at the top row,
// and the picture repeats outside the unit square.
TEST_F(BitmapShaderTest, SamplesThePixelUnderThePoint)
{
	bitmap("grid.png");
	ASSERT_EQ(shader->InitRender(InitRenderStruct(doc)), INITRENDERRESULT_OK);
	const struct
	{
		double u, v;
		int32_t x, y;
	} cases[] = {
		{0.5 / 3, 0.25, 0, 0},
		{2.5 / 3, 0.25, 2, 0},
		{1.5 / 3, 0.75, 1, 1},
		// Edges belong to the pixel that starts there.
		{0.0, 0.0, 0, 0},
		{0.5, 0.5, 1, 1},
		{2.0 / 3, 0.49, 2, 0},
		{0.999, 0.999, 2, 1},
		// Tiles.
		{1.0, 1.0, 0, 0},
		{1.5 / 3 + 2, 0.75 - 3, 1, 1},
		{-0.1, -0.1, 2, 1},
		{-1.0 + 0.5 / 3, 5.25, 0, 0},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(std::to_string(c.u) + ", " + std::to_string(c.v));
		const Vector colour = sample(c.u, c.v);
		EXPECT_EQ(colour, grid(c.x, c.y));
	}
	// The picture goes with FreeRender.
	shader->FreeRender();
	EXPECT_EQ(sample(0.5, 0.75), Vector());
}

// A relative name is looked up beside the document; a file that is not
// there, or no picture, is refused.
TEST_F(BitmapShaderTest, FindsItsFile)
{
	BaseDocument* pathless = BaseDocument::Alloc();
	const struct
	{
		const char* what;
		std::string name;
		BaseDocument* doc;
		INITRENDERRESULT expected;
	} cases[] = {
		{"relative, beside the document", "grid.png", doc, INITRENDERRESULT_OK},
		{"absolute, without a document", dir.file("grid.png"), nullptr, INITRENDERRESULT_OK},
		{"relative, without a document", "grid.png", nullptr, INITRENDERRESULT_ASSETMISSING},
		{"relative, the document without a path", "grid.png", pathless, INITRENDERRESULT_ASSETMISSING},
		{"missing", "other.png", doc, INITRENDERRESULT_ASSETMISSING},
		{"no name", "", doc, INITRENDERRESULT_ASSETMISSING},
		{"no picture", "notes.png", doc, INITRENDERRESULT_UNKNOWNERROR},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.what);
		bitmap(c.name);
		EXPECT_EQ(shader->InitRender(InitRenderStruct(c.doc)), c.expected);
		EXPECT_EQ(sample(0.9, 0.9), c.expected == INITRENDERRESULT_OK ? grid(2, 1) : Vector());
		shader->FreeRender();
	}
	BaseDocument::Free(pathless);
}
