#include "c4d/bake_texture.h"

#include "c4d/base_bitmap.h"
#include "c4d/base_document.h"
#include "c4d/base_shader.h"
#include "c4d/base_thread.h"
#include "c4d/picture_test_helpers.h"
#include "c4d/polygon_object.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"

#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace
{

// What a picture that was not baked over holds.
const Rgb background = {1, 2, 3};

// Stops when asked for the nth time.
class StopAt : public BaseThread
{
public:
	explicit StopAt(int n_) : n(n_) {}
	bool TestBreak() override { return ++asked >= n; }
	int asked = 0;

private:
	int n;
};

// A document in a folder of its own with polygon objects wearing standard
// materials, baked into pictures.
class BakeTextureTest : public testing::Test
{
protected:
	void SetUp() override
	{
		doc = BaseDocument::Alloc();
		doc->SetDocumentPath(Filename(dir.path().c_str()));
	}
	void TearDown() override { BaseDocument::Free(doc); }

	// A standard material in the document, its colour channel the shader
	// when given.
	BaseMaterial* material(BaseShader* shader = nullptr)
	{
		BaseMaterial* mat = BaseMaterial::Alloc(Mmaterial);
		doc->InsertMaterial(mat);
		if(shader)
		{
			mat->InsertShader(shader);
			mat->GetDataInstance()->SetLink(MATERIAL_COLOR_SHADER, shader);
		}
		return mat;
	}

	static BaseShader* colourShader(const Vector& colour)
	{
		BaseShader* sh = BaseShader::Alloc(Xcolor);
		sh->GetDataInstance()->SetVector(COLORSHADER_COLOR, colour);
		return sh;
	}

	// A bitmap shader of a PNG beside the document whose pixel (x, y) is
	// pixel(x, y).
	BaseShader* bitmapShader(int32_t width, int32_t height, const std::function<Rgb(int32_t, int32_t)>& pixel)
	{
		BaseBitmap bmp;
		EXPECT_EQ(bmp.Init(width, height), IMAGERESULT_OK);
		for(int32_t y = 0; y < height; ++y)
			for(int32_t x = 0; x < width; ++x)
			{
				const Rgb c = pixel(x, y);
				bmp.SetPixel(x, y, c[0], c[1], c[2]);
			}
		const std::string name = "picture" + std::to_string(++pictures) + ".png";
		EXPECT_EQ(bmp.Save(Filename(dir.file(name).c_str()), FILTER_PNG, nullptr, SAVEBIT_NONE), IMAGERESULT_OK);
		BaseShader* sh = BaseShader::Alloc(Xbitmap);
		sh->GetDataInstance()->SetFilename(BITMAPSHADER_FILENAME, Filename(name.c_str()));
		return sh;
	}

	// A polygon object in the document, one polygon per UV record (a
	// triangle when d repeats c), wearing mat; its UVW tag in uvw.
	TextureTag* wearing(BaseMaterial* mat, const std::vector<UVWStruct>& uvs, UVWTag** uvw)
	{
		PolygonObject* op = PolygonObject::Alloc(4, (int32_t)uvs.size());
		const Vector corners[] = {Vector(0, 0, 0), Vector(1, 0, 0), Vector(1, 0, 1), Vector(0, 0, 1)};
		std::copy(corners, corners + 4, op->GetPointW());
		*uvw = UVWTag::Alloc((int32_t)uvs.size());
		for(int32_t i = 0; i < (int32_t)uvs.size(); ++i)
		{
			const bool triangle = uvs[i].c == uvs[i].d;
			op->GetPolygonW()[i] = triangle ? CPolygon(0, 1, 2) : CPolygon(0, 1, 2, 3);
			(*uvw)->Set(i, uvs[i]);
		}
		TextureTag* tag = TextureTag::Alloc();
		tag->SetMaterial(mat);
		op->InsertTag(*uvw);
		op->InsertTag(tag);
		doc->InsertObject(op, nullptr, nullptr);
		return tag;
	}

	// The UVs of a quad over (u0, v0) to (u1, v1).
	static UVWStruct square(double u0, double v0, double u1, double v1)
	{
		return {Vector(u0, v0, 0), Vector(u1, v0, 0), Vector(u1, v1, 0), Vector(u0, v1, 0)};
	}

	static BaseContainer settings(int32_t width, int32_t height, int32_t superSampling = 0, int32_t border = 0)
	{
		BaseContainer bc;
		bc.SetBool(BAKE_TEX_COLOR, true);
		bc.SetInt32(BAKE_TEX_WIDTH, width);
		bc.SetInt32(BAKE_TEX_HEIGHT, height);
		bc.SetInt32(BAKE_TEX_SUPERSAMPLING, superSampling);
		bc.SetInt32(BAKE_TEX_PIXELBORDER, border);
		return bc;
	}

	// Bakes the tag into a picture of width by height filled with the
	// background colour first.
	BAKE_TEX_ERR bake(TextureTag* tag, UVWTag* uvw, BaseBitmap& bmp, const BaseContainer& bc, BaseThread* thread = nullptr)
	{
		EXPECT_EQ(bmp.Init(bc.GetInt32(BAKE_TEX_WIDTH), bc.GetInt32(BAKE_TEX_HEIGHT)), IMAGERESULT_OK);
		bmp.Clear(background[0], background[1], background[2]);
		BAKE_TEX_ERR err = BAKE_TEX_ERR_NONE;
		BaseDocument* bakeDoc = InitBakeTexture(doc, tag, uvw, nullptr, bc, &err, thread);
		if(!bakeDoc)
			return err;
		EXPECT_EQ(err, BAKE_TEX_ERR_NONE);
		err = BakeTexture(bakeDoc, bc, &bmp, thread);
		BaseDocument::Free(bakeDoc);
		return err;
	}

	VelornTest::TempDir dir;
	BaseDocument* doc = nullptr;
	int pictures = 0;
};

} // namespace

// The colour channel's colour times its brightness without a shader, the
// colour shader's colour clamped with one, and a bitmap shader's pixels
// given back at pixel centres.
TEST_F(BakeTextureTest, ColourChannelOverTheSquare)
{
	UVWTag* uvw = nullptr;
	BaseMaterial* plain = material();
	plain->GetDataInstance()->SetVector(MATERIAL_COLOR_COLOR, Vector(0.2, 0.6, 1.0));
	plain->GetDataInstance()->SetFloat(MATERIAL_COLOR_BRIGHTNESS, 0.8);
	BaseMaterial* off = material(colourShader(Vector(1, 1, 1)));
	off->GetDataInstance()->SetBool(MATERIAL_USE_COLOR, false);
	const auto picture = [](int32_t x, int32_t y) { return Rgb{x * 60 + 10, y * 70 + 20, (x * 3 + y) * 20}; };
	const struct
	{
		const char* what;
		BaseMaterial* mat;
		int32_t width, height;
		std::function<Rgb(int32_t, int32_t)> expected;
	} cases[] = {
		// 0.16, 0.48, 0.8 times 255, rounded.
		{"colour times brightness", plain, 5, 4, [](int32_t, int32_t) { return Rgb{41, 122, 204}; }},
		// 0.25 * 255 = 63.75; the rest clamped to 0 and 1.
		{"colour shader", material(colourShader(Vector(2, 0.25, -1))), 5, 4,
			[](int32_t, int32_t) { return Rgb{255, 64, 0}; }},
		{"channel off", off, 3, 3, [](int32_t, int32_t) { return Rgb{0, 0, 0}; }},
		{"bitmap shader, same size", material(bitmapShader(4, 3, picture)), 4, 3, picture},
		{"bitmap shader, twice the size", material(bitmapShader(4, 3, picture)), 8, 6,
			[&](int32_t x, int32_t y) { return picture(x / 2, y / 2); }},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.what);
		TextureTag* tag = wearing(c.mat, {square(0, 0, 1, 1)}, &uvw);
		BaseBitmap bmp;
		ASSERT_EQ(bake(tag, uvw, bmp, settings(c.width, c.height)), BAKE_TEX_ERR_NONE);
		expectPixels(bmp, c.expected);
	}
}

// Only pixels whose centre lies in a polygon's UV area are baked (a centre
// on an edge counts), the quad's two triangles leave no gap along their
// diagonal, and a texture tag restricted to a selection bakes its polygons
// alone.
TEST_F(BakeTextureTest, PixelCentresInsideThePolygons)
{
	UVWTag* uvw = nullptr;
	BaseMaterial* white = material(colourShader(Vector(1, 1, 1)));
	const Rgb baked = {255, 255, 255};

	// A triangle over the upper left half: centres with x + y + 1 <= 4.
	TextureTag* triangle = wearing(white, {{Vector(0, 0, 0), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 1, 0)}}, &uvw);
	BaseBitmap bmp;
	ASSERT_EQ(bake(triangle, uvw, bmp, settings(4, 4)), BAKE_TEX_ERR_NONE);
	expectPixels(bmp, [&](int32_t x, int32_t y) { return x + y <= 3 ? baked : background; });

	// A quad along a slanted diagonal: every centre of the picture.
	TextureTag* slanted = wearing(
		white, {{Vector(0, 0, 0), Vector(1, 0, 0), Vector(1, 1, 0), Vector(0, 1, 0)}}, &uvw);
	ASSERT_EQ(bake(slanted, uvw, bmp, settings(7, 5)), BAKE_TEX_ERR_NONE);
	expectPixels(bmp, [&](int32_t, int32_t) { return baked; });

	// The left and right halves; the tag keeps to the selection "Right".
	TextureTag* halves = wearing(white, {square(0, 0, 0.5, 1), square(0.5, 0, 1, 1)}, &uvw);
	SelectionTag* right = SelectionTag::Alloc(Tpolygonselection);
	right->SetName("Right");
	right->GetBaseSelect()->Select(1);
	halves->GetObject()->InsertTag(right);
	halves->GetDataInstance()->SetString(TEXTURETAG_RESTRICTION, "Right");
	ASSERT_EQ(bake(halves, uvw, bmp, settings(4, 2)), BAKE_TEX_ERR_NONE);
	expectPixels(bmp, [&](int32_t x, int32_t) { return x >= 2 ? baked : background; });
}

// Super sampling n takes (2^n)^2 samples spread evenly over each pixel and
// averages them: over a picture that turns from black to white at u = 0.6
// (and, turned, at v = 0.6), pixel 2 of 4 (u from 0.5 to 0.75) has its
// centre on the white side and 0, 1/2 (n = 1, 2) or 3/8 (n = 3) of its
// samples on the black one.
TEST_F(BakeTextureTest, SuperSamplingAveragesAcrossAnEdge)
{
	UVWTag* uvw = nullptr;
	const auto step = [](int32_t i) { return i >= 3 ? Rgb{255, 255, 255} : Rgb{0, 0, 0}; };
	TextureTag* alongU = wearing(material(bitmapShader(5, 1, [&](int32_t x, int32_t) { return step(x); })),
		{square(0, 0, 1, 1)}, &uvw);
	UVWTag* uvwU = uvw;
	TextureTag* alongV = wearing(material(bitmapShader(1, 5, [&](int32_t, int32_t y) { return step(y); })),
		{square(0, 0, 1, 1)}, &uvw);
	UVWTag* uvwV = uvw;
	const int expected[] = {255, 128, 128, 159};
	for(int32_t n = 0; n < 4; ++n)
	{
		SCOPED_TRACE(n);
		BaseBitmap bmp;
		ASSERT_EQ(bake(alongU, uvwU, bmp, settings(4, 1, n)), BAKE_TEX_ERR_NONE);
		EXPECT_EQ(pixelOf(bmp, 2, 0)[0], expected[n]);
		ASSERT_EQ(bake(alongV, uvwV, bmp, settings(1, 4, n)), BAKE_TEX_ERR_NONE);
		EXPECT_EQ(pixelOf(bmp, 0, 2)[0], expected[n]);
	}
}

// The pixel border grows the baked area ring by ring, each new pixel taking
// its nearest baked neighbour's colour: with a picture of distinct pixels
// baked over the middle (pixels 3 to 8 of 12), a pixel within the border's
// distance (counting diagonal steps as one) takes the colour of the nearest
// pixel of the middle, one further away stays as it was.
TEST_F(BakeTextureTest, PixelBorderFillsRings)
{
	UVWTag* uvw = nullptr;
	const auto picture = [](int32_t x, int32_t y) { return Rgb{x * 20, y * 20, 100}; };
	TextureTag* tag = wearing(material(bitmapShader(12, 12, picture)), {square(0.25, 0.25, 0.75, 0.75)}, &uvw);
	for(const int32_t border : {0, 1, 2, 30})
	{
		SCOPED_TRACE(border);
		BaseBitmap bmp;
		ASSERT_EQ(bake(tag, uvw, bmp, settings(12, 12, 0, border)), BAKE_TEX_ERR_NONE);
		expectPixels(bmp, [&](int32_t x, int32_t y) {
			const int32_t nx = std::clamp(x, 3, 8), ny = std::clamp(y, 3, 8);
			const bool filled = std::max(std::abs(x - nx), std::abs(y - ny)) <= border;
			return filled ? picture(nx, ny) : background;
		});
	}
}

// The thread is asked before each row: a stop leaves the rows before it
// baked and the others as they were.
TEST_F(BakeTextureTest, ThreadStopsTheBake)
{
	UVWTag* uvw = nullptr;
	TextureTag* tag = wearing(material(colourShader(Vector(1, 1, 1))), {square(0, 0, 1, 1)}, &uvw);
	StopAt third(3);
	BaseBitmap bmp;
	EXPECT_EQ(bake(tag, uvw, bmp, settings(3, 6), &third), BAKE_TEX_ERR_USERBREAK);
	EXPECT_EQ(third.asked, 3);
	for(int32_t y = 0; y < 6; ++y)
		EXPECT_EQ(pixelOf(bmp, 1, y), (y < 2 ? Rgb{255, 255, 255} : background)) << y;

	BaseThread ended;
	ended.End();
	EXPECT_EQ(bake(tag, uvw, bmp, settings(3, 6), &ended), BAKE_TEX_ERR_USERBREAK);
	EXPECT_EQ(pixelOf(bmp, 0, 0), background);
	// Not asked to stop, the same thread bakes every row.
	StopAt never(1000);
	EXPECT_EQ(bake(tag, uvw, bmp, settings(3, 6, 0, 2), &never), BAKE_TEX_ERR_NONE);
	EXPECT_EQ(pixelOf(bmp, 2, 5), (Rgb{255, 255, 255}));
}

// What cannot be baked is refused with its code; the bake document holds
// copies, so that the source may change or go before BakeTexture runs.
TEST_F(BakeTextureTest, RefusalsAndCopies)
{
	UVWTag* uvw = nullptr;
	BaseMaterial* mat = material();
	mat->GetDataInstance()->SetVector(MATERIAL_COLOR_COLOR, Vector(1, 0, 0));
	mat->GetDataInstance()->SetFloat(MATERIAL_COLOR_BRIGHTNESS, 1.0);
	TextureTag* tag = wearing(mat, {square(0, 0, 1, 1)}, &uvw);
	UVWTag* tagUvw = uvw;
	UVWTag* otherUvw = UVWTag::Alloc(1);
	tag->GetObject()->InsertTag(otherUvw);
	TextureTag* noMaterial = wearing(nullptr, {square(0, 0, 1, 1)}, &uvw);
	TextureTag* loose = TextureTag::Alloc();
	loose->SetMaterial(mat);
	BaseObject* null = BaseObject::Alloc(Onull);
	doc->InsertObject(null, nullptr, nullptr);
	TextureTag* onNull = TextureTag::Alloc();
	onNull->SetMaterial(mat);
	null->InsertTag(onNull);
	const BaseContainer bc = settings(2, 2);
	const struct
	{
		const char* what;
		BaseDocument* doc;
		TextureTag* tag;
		UVWTag* uvw;
		UVWTag* dest;
		BAKE_TEX_ERR expected;
	} cases[] = {
		{"no document", nullptr, tag, tagUvw, nullptr, BAKE_TEX_ERR_NO_DOC},
		{"no tag", doc, nullptr, tagUvw, nullptr, BAKE_TEX_ERR_NO_TEXTURE_TAG},
		{"no UVW tag", doc, tag, nullptr, nullptr, BAKE_TEX_ERR_NO_UVW_TAG},
		{"another layout", doc, tag, tagUvw, otherUvw, BAKE_TEX_ERR_NO_UVW_TAG},
		{"no material", doc, noMaterial, uvw, nullptr, BAKE_TEX_ERR_TEXTURE_MISSING},
		{"a tag on no object", doc, loose, tagUvw, nullptr, BAKE_TEX_ERR_NO_OBJECT},
		{"a tag on an object without polygons", doc, onNull, tagUvw, nullptr, BAKE_TEX_ERR_NO_OBJECT},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.what);
		BAKE_TEX_ERR err = BAKE_TEX_ERR_NONE;
		EXPECT_EQ(InitBakeTexture(c.doc, c.tag, c.uvw, c.dest, bc, &err), nullptr);
		EXPECT_EQ(err, c.expected);
	}
	TextureTag::Free(loose);

	// The layout given twice is one layout.
	BAKE_TEX_ERR err = BAKE_TEX_ERR_NONE;
	BaseDocument* bakeDoc = InitBakeTexture(doc, tag, tagUvw, tagUvw, bc, &err);
	ASSERT_NE(bakeDoc, nullptr);
	BaseBitmap bmp;
	ASSERT_EQ(bmp.Init(2, 2), IMAGERESULT_OK);
	BaseBitmap wrongSize;
	ASSERT_EQ(wrongSize.Init(2, 3), IMAGERESULT_OK);
	EXPECT_EQ(BakeTexture(bakeDoc, bc, &wrongSize, nullptr), BAKE_TEX_ERR_WRONG_BITMAP);
	EXPECT_EQ(BakeTexture(bakeDoc, bc, nullptr, nullptr), BAKE_TEX_ERR_WRONG_BITMAP);
	EXPECT_EQ(BakeTexture(doc, bc, &bmp, nullptr), BAKE_TEX_ERR_NO_RENDER_DOC);
	EXPECT_EQ(BakeTexture(nullptr, bc, &bmp, nullptr), BAKE_TEX_ERR_NO_DOC);

	mat->GetDataInstance()->SetVector(MATERIAL_COLOR_COLOR, Vector(0, 0, 1));
	BaseObject* source = tag->GetObject();
	BaseObject::Free(source);
	EXPECT_EQ(BakeTexture(bakeDoc, bc, &bmp, nullptr), BAKE_TEX_ERR_NONE);
	EXPECT_EQ(pixelOf(bmp, 1, 1), (Rgb{255, 0, 0}));
	BaseDocument::Free(bakeDoc);

	// A bitmap shader whose file is missing.
	BaseShader* missing = BaseShader::Alloc(Xbitmap);
	missing->GetDataInstance()->SetFilename(BITMAPSHADER_FILENAME, Filename("gone.png"));
	TextureTag* gone = wearing(material(missing), {square(0, 0, 1, 1)}, &uvw);
	EXPECT_EQ(bake(gone, uvw, bmp, bc), BAKE_TEX_ERR_TEXTURE_MISSING);
}
