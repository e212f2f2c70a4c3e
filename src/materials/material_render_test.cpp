// The plug-in's material as the host renders it by itself and draws it in
// the viewport.

#include "c4d/base_bitmap.h"
#include "c4d/base_shader.h"
#include "c4d/picture_test_helpers.h"
#include "materials/material_test_helpers.h"

#include <cmath>
#include <vector>

namespace
{

// A surface point lit by one light of diffuse 0.5 and specular 0.1 (grey),
// whose traced rays all see white and are recorded.
struct LitPoint : VolumeData
{
	LitPoint()
	{
		bumpn = Vector(0, 1, 0);
		ray_dir = Vector(0, -1, 0);
	}
	void IlluminanceSimple(Vector* diffuse, Vector* specular, double) override
	{
		*diffuse = Vector(0.5, 0.5, 0.5);
		*specular = Vector(0.1, 0.1, 0.1);
	}
	Vector TraceColor(const Vector& dir, double maxdist) override
	{
		traced.push_back(dir);
		EXPECT_EQ(maxdist, 100000000.0);
		return Vector(1, 1, 1);
	}
	std::vector<Vector> traced;
};

class MaterialRender : public MaterialTest
{
protected:
	// CalcSurface and CalcTransparency of mat at a point, between InitRender
	// and FreeRender.
	void shade(BaseMaterial* mat, LitPoint& point)
	{
		ASSERT_EQ(mat->InitRender(InitRenderStruct(doc)), INITRENDERRESULT_OK);
		mat->CalcSurface(&point);
		mat->CalcTransparency(&point);
		mat->FreeRender();
	}
};

} // namespace

// The surface colour times the light, the reflection of reflective kinds
// weighted 0.15 down to a depth of 4, emission added last; the specular
// kind has no colour of its own; a shader's sample goes through the
// texture's scale terms.
TEST_F(MaterialRender, SurfaceByKind)
{
	BaseMaterial* diffuse = newMaterial(MAT_TYPE_DIFFUSE);
	diffuse->GetDataInstance()->SetVector(MAT_ALBEDO_COLOUR, Vector(1, 0.5, 0.25));
	diffuse->GetDataInstance()->SetBool(MAT_USE_EMISSION, true);
	diffuse->GetDataInstance()->SetVector(MAT_EMISSION_RGB_COLOUR, Vector(0, 0, 1));
	diffuse->GetDataInstance()->SetFloat(MAT_EMISSION_RGB_SCALE, 2.0);
	LitPoint lit;
	shade(diffuse, lit);
	// (0.5 + 0.1) x (1, 0.5, 0.25) x 0.8, plus (0, 0, 2).
	expectNearVector(lit.col, Vector(0.48, 0.24, 2.12), 1e-6);
	EXPECT_TRUE(lit.traced.empty());
	expectNearVector(lit.trans, Vector(), 1e-6);

	BaseMaterial* phong = newMaterial(MAT_TYPE_PHONG);
	linkColour(phong, MAT_ALBEDO_LINK, Vector(0.5, 0.5, 0.5));
	phong->GetDataInstance()->SetFloat(MAT_ALBEDO_A, 1.0);
	phong->GetDataInstance()->SetFloat(MAT_ALBEDO_C, 0.1);
	LitPoint mirrored;
	mirrored.ray_dir = Vector(1, -1, 0).GetNormalized();
	shade(phong, mirrored);
	// t = 0.5: 0.25 + 0.5 + 0.1 = 0.85, times the light 0.6, plus 0.15.
	expectNearVector(mirrored.col, Vector(0.66, 0.66, 0.66), 1e-6);
	ASSERT_EQ(mirrored.traced.size(), 1u);
	expectNearVector(mirrored.traced[0], Vector(1, 1, 0).GetNormalized(), 1e-6);

	LitPoint deep;
	deep.raydepth = 4;
	shade(phong, deep);
	EXPECT_TRUE(deep.traced.empty());

	BaseMaterial* mirror = newMaterial(MAT_TYPE_SPECULAR);
	mirror->GetDataInstance()->SetBool(MAT_TRANSPARENT, false);
	LitPoint black;
	shade(mirror, black);
	expectNearVector(black.col, Vector(0.15, 0.15, 0.15), 1e-6);
	expectNearVector(black.trans, Vector(), 1e-6);
}

// Transparent kinds pass light by Snell's law with the material's IOR
// entering and the current index leaving, reflect totally past the
// critical angle, and are fully transparent to the host.
TEST_F(MaterialRender, RefractionOfTransparentKinds)
{
	BaseMaterial* glass = newMaterial(MAT_TYPE_SPECULAR);
	glass->GetDataInstance()->SetBool(MAT_TRANSPARENT, true);
	glass->GetDataInstance()->SetFloat(MAT_MEDIUM_IOR, 1.5);

	LitPoint entering;
	entering.ray_dir = Vector(1, -1, 0).GetNormalized();
	shade(glass, entering);
	expectNearVector(entering.trans, Vector(1, 1, 1), 1e-6);
	// sin 45 degrees / 1.5 along x, the rest down.
	const double sine = std::sqrt(0.5) / 1.5;
	expectNearVector(entering.tray_dir, Vector(sine, -std::sqrt(1 - sine * sine), 0), 1e-6);

	LitPoint leaving;
	leaving.ior = 1.5;
	leaving.ray_dir = Vector(std::sqrt(0.75), 0.5, 0);
	shade(glass, leaving);
	// sin 60 degrees x 1.5 is past 1: the ray stays inside.
	expectNearVector(leaving.tray_dir, Vector(std::sqrt(0.75), -0.5, 0), 1e-6);

	BaseMaterial* glossy = newMaterial(MAT_TYPE_GLOSSY_TRANSPARENT);
	LitPoint through;
	shade(glossy, through);
	expectNearVector(through.trans, Vector(1, 1, 1), 1e-6);
	expectNearVector(through.tray_dir, Vector(0, -1, 0), 1e-6);
}

// A shader that cannot start stops the render, and its sampler is gone.
TEST_F(MaterialRender, FailedShaderStopsTheRender)
{
	BaseMaterial* mat = newMaterial();
	BaseShader* missing = BaseShader::Alloc(Xbitmap);
	missing->GetDataInstance()->SetFilename(BITMAPSHADER_FILENAME, Filename("no such picture.png"));
	mat->InsertShader(missing);
	mat->GetDataInstance()->SetLink(MAT_ALBEDO_LINK, missing);
	EXPECT_EQ(mat->InitRender(InitRenderStruct(doc)), INITRENDERRESULT_ASSETMISSING);
	LitPoint lit;
	mat->CalcSurface(&lit);
	// The material's own colour, 0.8 grey, under the light of 0.6.
	expectNearVector(lit.col, Vector(0.48, 0.48, 0.48), 1e-6);
}

// The viewport image: the albedo colour times its scale, or the albedo
// shader sampled at (x / width, y / height), bytes truncated and capped;
// with alpha on, the alpha value or the mean of the alpha shader, cut at 0.5
// by the step switch.
TEST_F(MaterialRender, ViewportImage)
{
	BaseMaterial* plain = newMaterial();
	plain->GetDataInstance()->SetVector(MAT_ALBEDO_COLOUR, Vector(1, 0.5, 0.25));
	ASSERT_TRUE(plain->Update(doc));
	const BaseBitmap* image = plain->GetEditorImage();
	ASSERT_NE(image, nullptr);
	EXPECT_EQ(image->GetBw(), EDITOR_IMAGE_SIZE);
	EXPECT_EQ(image->GetBt(), 24);
	EXPECT_EQ(pixelOf(*image, EDITOR_IMAGE_SIZE - 1, 3), (Rgb{204, 102, 51}));

	BaseMaterial* shaded = newMaterial();
	linkColour(shaded, MAT_ALBEDO_LINK, Vector(2, -1, 0.5));
	BaseContainer* data = shaded->GetDataInstance();
	data->SetBool(MAT_USE_ALPHA, true);
	data->SetFloat(MAT_ALPHA_VALUE, 0.5);
	BaseBitmap bmp;
	ASSERT_EQ(bmp.Init(3, 2, 24), IMAGERESULT_OK);
	ASSERT_TRUE(plugin(shaded)->InitGLImage(shaded, doc, nullptr, &bmp));
	EXPECT_EQ(pixelOf(bmp, 2, 1), (Rgb{255, 0, 127}));
	ASSERT_EQ(bmp.GetBt(), 32);
	uint16_t alpha;
	bmp.GetAlphaPixel(bmp.GetInternalChannel(), 1, 1, &alpha);
	EXPECT_EQ(alpha, 127);

	// A mean of 0.6 from the shader: 152 (the third is 0.333333...) without
	// the step, 255 with it, 0 for a mean of 0.4.
	BaseShader* mask = linkColour(shaded, MAT_ALPHA_LINK, Vector(0.6, 0.6, 0.6));
	const struct
	{
		bool step;
		double grey;
		int alpha;
	} cases[] = {{false, 0.6, 152}, {true, 0.6, 255}, {true, 0.4, 0}, {true, 1.2, 0}};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.grey);
		data->SetBool(MAT_BLEND_STEP, c.step);
		mask->GetDataInstance()->SetVector(COLORSHADER_COLOR, Vector(c.grey, c.grey, c.grey));
		ASSERT_TRUE(plugin(shaded)->InitGLImage(shaded, doc, nullptr, &bmp));
		bmp.GetAlphaPixel(bmp.GetInternalChannel(), 0, 0, &alpha);
		EXPECT_EQ(alpha, c.alpha);
	}
}
