// The material's previews as the host's preview asks for them: the scene it
// prepares, and pictures rendered by the stand-in renderer through the video
// post in preview mode.
#include "materials/material_preview.h"
#include "materials/material_test_helpers.h"

#include "c4d/base_bitmap.h"
#include "c4d/base_shader.h"
#include "c4d/document_file.h"
#include "c4d/host_clock.h"
#include "c4d/light_object.h"
#include "c4d/material_preview_host.h"
#include "c4d/preview_scenes.h"
#include "c4d/render_document.h"
#include "c4d/texture_tag.h"
#include "host/camera_tag.h"
#include "host/light_tag.h"
#include "host/plugin_globals.h"
#include "host/registration.h"
#include "host/video_post_lookup.h"
#include "render/render_state.h"
#include "render/video_post.h"
#include "support/platform_utils.h"

#include <chrono>
#include <cstdlib>
#include <thread>

namespace
{

struct Rgb
{
	int r, g, b;
};

Rgb pixel(const BaseBitmap& bitmap, int32_t x, int32_t y)
{
	uint16_t r = 0, g = 0, b = 0;
	bitmap.GetPixel(x, y, &r, &g, &b);
	return Rgb{r, g, b};
}

// The mean colour of the square of side n from (x0, y0).
Rgb meanOf(const BaseBitmap& bitmap, int32_t x0, int32_t y0, int32_t n)
{
	Rgb sum{0, 0, 0};
	for(int32_t y = y0; y < y0 + n; ++y)
		for(int32_t x = x0; x < x0 + n; ++x)
		{
			const Rgb p = pixel(bitmap, x, y);
			sum = Rgb{sum.r + p.r, sum.g + p.g, sum.b + p.b};
		}
	return Rgb{sum.r / (n * n), sum.g / (n * n), sum.b / (n * n)};
}

// The preview of the plug-in's material in the module's own preview scene,
// with the video post, the tags and the stand-in renderer's SDK library.
class MaterialPreviewTest : public MaterialTest
{
protected:
	void SetUp() override
	{
		MaterialTest::SetUp();
		ASSERT_TRUE(RegisterVelornVideoPost());
		ASSERT_TRUE(RegisterCameraTag());
		ASSERT_TRUE(RegisterLightTag());
		saved_plugin_path = plugin_path;
		plugin_path = new Filename(String(VelornTest::testDataPath("../src/host")));
		PreviewScenes::get().clear();
		ASSERT_TRUE(AddUserPreviewScene(
			moduleResourceFile("materialpreview") + Filename(String("sphere.json")), ID_VELORN_MATERIAL, nullptr));
		const char* config = std::getenv("XDG_CONFIG_HOME");
		saved_config = config ? config : "";
		Velorn::PlatformUtils::setEnvironmentVariable("XDG_CONFIG_HOME", home.path());
#ifdef STANDIN_RENDERER_DIR
		g_context = new Velorn::VelornContext();
		std::string error;
		ASSERT_EQ(g_context->load(STANDIN_RENDERER_DIR, home.path(), error), 0) << error;
#endif
	}

	void TearDown() override
	{
		renderState().clear();
		g_context = nullptr;
		HostClock::get().release();
		PreviewScenes::get().clear();
		delete plugin_path;
		plugin_path = saved_plugin_path;
		Velorn::PlatformUtils::setEnvironmentVariable("XDG_CONFIG_HOME", saved_config);
		MaterialTest::TearDown();
	}

	// A material of the kind with an albedo colour; the kinds that build on
	// other materials get diffuse ones.
	BaseMaterial* material(int32_t kind, const Vector& colour = Vector(0.8, 0.8, 0.8))
	{
		// The export leaves out a material without a name.
		BaseMaterial* mat = newMaterial(kind, "Preview");
		BaseContainer& data = *mat->GetDataInstance();
		data.SetVector(MAT_ALBEDO_COLOUR, colour);
		for(int32_t link : {MAT_BLEND_A, MAT_BLEND_B, MAT_COAT_SUBSTRATE, MAT_THIN_FRONT, MAT_THIN_BACK})
			if(kind == MAT_TYPE_BLEND || kind == MAT_TYPE_COATING || kind == MAT_TYPE_DOUBLE_SIDED_THIN)
				data.SetLink(link, newMaterial(MAT_TYPE_DIFFUSE, "Linked"));
		return mat;
	}

	static MaterialPreview::Settings settings(int32_t size = 16)
	{
		MaterialPreview::Settings s;
		s.width = s.height = size;
		return s;
	}

	static double haltValue(MaterialPreview& preview)
	{
		return findVideoPostContainer(preview.GetScene())->GetFloat(vp_halt_spp);
	}

	VelornTest::TempDir home;
	std::string saved_config;
	Filename* saved_plugin_path = nullptr;
};

TEST_F(MaterialPreviewTest, PreparedSceneHoldsTheCloneAreaLightsAndTheRenderersSettings)
{
	BaseMaterial* mat = material(MAT_TYPE_DIFFUSE);
	doc->SetDocumentPath(Filename(String("/projects/car")));
	MaterialPreview preview(mat);
	g_context = nullptr;
	BaseBitmap bmp;
	ASSERT_EQ(preview.generate(bmp, settings()).step, MaterialPreviewStep::Answered);
	BaseDocument* scene = preview.GetScene();
	ASSERT_NE(scene, nullptr);
	EXPECT_EQ(scene->GetDocumentPath(), Filename(String("/projects/car")));

	const TextureTag* tag = static_cast<const TextureTag*>(scene->SearchObject(String("Object"))->GetTag(Ttexture));
	ASSERT_NE(tag->GetMaterial(), nullptr);
	EXPECT_NE(tag->GetMaterial(), mat);
	EXPECT_EQ(tag->GetMaterial()->GetType(), ID_VELORN_MATERIAL);

	const BaseContainer* post = findVideoPostContainer(scene);
	ASSERT_NE(post, nullptr);
	EXPECT_FALSE(scene->GetActiveRenderData()->GetFirstVideoPost()->GetBit(BIT_ACTIVE));
	expectValues(*post, {{vp_auto_threads, 1}, {vp_max_depth, 100}, {vp_render_mode, vp_render_mode_bidirectional},
		{vp_material_preview, 1}, {vp_save_vli, 0}, {vp_image_save_period, 1000000.0}, {vp_unit, vp_unit_cm}});

	EXPECT_EQ(scene->SearchObject(String("Environment")), nullptr);
	EXPECT_EQ(scene->SearchObject(String("Sky")), nullptr);
	// The light named "Light" comes first: only the lights after it glow less.
	for(const char* name : {"Light", "Fill Light"})
	{
		SCOPED_TRACE(name);
		const BaseObject* light = scene->SearchObject(String(name));
		expectValues(*light->GetDataInstance(), {{LIGHT_TYPE, LIGHT_TYPE_AREA}, {LIGHT_AREADEFINITION_SIZEX, 400.0},
			{LIGHT_AREADEFINITION_SIZEY, 400.0}});
		const BaseTag* light_tag = light->GetTag(ID_LIGHT_TAG);
		ASSERT_NE(light_tag, nullptr);
		expectValues(*light_tag->GetDataInstance(), {{lt_type, lt_type_black_body},
			{lt_black_body_gain, std::string(name) == "Light" ? 1.0 : 0.4}});
	}
	EXPECT_EQ(scene->SearchObject(String("Polygon"))->GetMg().off.y, 1100.0);

	const BaseTag* camera_tag = scene->GetActiveCamera()->GetTag(ID_CAMERA_TAG);
	ASSERT_NE(camera_tag, nullptr);
	expectValues(*camera_tag->GetDataInstance(), {{ct_f_number, 64.0}, {ct_exposure_divisor, 1000.0},
		{ct_tonemap, ct_tonemap_camera}, {ct_super_sample, 2}, {ct_response_function, 28}});
	EXPECT_EQ(camera_tag->GetDataInstance()->GetFloat(ct_film_iso), 200.0);

	const TextureTag* floor_tag = static_cast<const TextureTag*>(scene->SearchObject(String("Floor"))->GetTag(Ttexture));
	const BaseList2D* shader = floor_tag->GetMaterial()->GetDataInstance()->GetLink(MATERIAL_COLOR_SHADER);
	ASSERT_NE(shader, nullptr);
	EXPECT_EQ(shader->GetType(), Xbitmap);
	EXPECT_EQ(shader->GetDataInstance()->GetFilename(BITMAPSHADER_FILENAME), moduleResourceFile("previewBackground.jpg"));
}

TEST_F(MaterialPreviewTest, UserObjectTakesThePlaceOfThePreviewObject)
{
	g_context = nullptr;
	BaseObject* cube = BaseObject::Alloc(Ocube);
	doc->InsertObject(cube, nullptr, nullptr);
	MaterialPreview preview(material(MAT_TYPE_DIFFUSE));
	BaseBitmap bmp;
	MaterialPreview::Settings s = settings();
	ASSERT_EQ(preview.generate(bmp, s).step, MaterialPreviewStep::Answered);
	EXPECT_EQ(preview.GetScene()->SearchObject(String("Object"))->GetType(), Osphere);

	s.userObject = cube;
	ASSERT_EQ(preview.generate(bmp, s).step, MaterialPreviewStep::Answered);
	const BaseObject* shown = preview.GetScene()->SearchObject(String("Object"));
	EXPECT_EQ(shown->GetType(), Ocube);
	const TextureTag* tag = static_cast<const TextureTag*>(shown->GetTag(Ttexture));
	ASSERT_NE(tag, nullptr);
	EXPECT_EQ(tag->GetMaterial()->GetDocument(), preview.GetScene());
	// The same object again is not exchanged again.
	ASSERT_EQ(preview.generate(bmp, s).step, MaterialPreviewStep::Answered);
	EXPECT_EQ(preview.GetScene()->SearchObject(String("Object")), shown);
}

TEST_F(MaterialPreviewTest, CloneFollowsTheLinksOfItsKindOnly)
{
	struct Case
	{
		int32_t kind;
		int32_t link;
		int32_t use_medium;
		int32_t use_alpha;
		bool cloned;
	};
	const Case cases[] = {
		{MAT_TYPE_BLEND, MAT_BLEND_A, 0, 0, true},
		{MAT_TYPE_BLEND, MAT_BLEND_B, 0, 0, true},
		{MAT_TYPE_COATING, MAT_COAT_SUBSTRATE, 0, 0, true},
		{MAT_TYPE_DOUBLE_SIDED_THIN, MAT_THIN_FRONT, 0, 0, true},
		{MAT_TYPE_DOUBLE_SIDED_THIN, MAT_THIN_BACK, 0, 0, true},
		{MAT_TYPE_SPECULAR, MAT_MEDIUM_SOURCE, 0, 0, true},
		{MAT_TYPE_GLOSSY_TRANSPARENT, MAT_MEDIUM_SOURCE, 0, 0, true},
		{MAT_TYPE_DIFFUSE_TRANSMITTER, MAT_MEDIUM_SOURCE, 1, 0, true},
		{MAT_TYPE_DIFFUSE_TRANSMITTER, MAT_MEDIUM_SOURCE, 0, 0, false},
		{MAT_TYPE_DIFFUSE, MAT_BLEND_A, 0, 1, true},
		{MAT_TYPE_DIFFUSE, MAT_BLEND_A, 0, 0, false},
		{MAT_TYPE_COATING, MAT_THIN_FRONT, 0, 0, false},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(testing::Message() << "kind " << c.kind << ", link " << c.link);
		BaseMaterial* mat = newMaterial(c.kind);
		BaseMaterial* linked = newMaterial(MAT_TYPE_DIFFUSE);
		mat->GetDataInstance()->SetLink(c.link, linked);
		mat->GetDataInstance()->SetBool(MAT_USE_MEDIUM, c.use_medium);
		mat->GetDataInstance()->SetBool(MAT_USE_ALPHA, c.use_alpha);
		BaseDocument* target = BaseDocument::Alloc();
		MaterialClones clones;
		BaseMaterial* clone = cloneWithLinks(mat, target, clones);
		ASSERT_NE(clone, nullptr);
		const BaseList2D* now = clone->GetDataInstance()->GetLink(c.link);
		EXPECT_EQ(now != linked, c.cloned);
		EXPECT_EQ(clones.size(), c.cloned ? 2u : 1u);
		if(c.cloned)
		{
			EXPECT_EQ(now->GetDocument(), target);
		}
		BaseDocument::Free(target);
	}
	// A material linked twice is cloned once, and a loop ends.
	BaseMaterial* blend = newMaterial(MAT_TYPE_BLEND);
	blend->GetDataInstance()->SetLink(MAT_BLEND_A, blend);
	blend->GetDataInstance()->SetLink(MAT_BLEND_B, blend);
	BaseDocument* target = BaseDocument::Alloc();
	MaterialClones clones;
	BaseMaterial* clone = cloneWithLinks(blend, target, clones);
	EXPECT_EQ(clone->GetDataInstance()->GetLink(MAT_BLEND_A), clone);
	EXPECT_EQ(clone->GetDataInstance()->GetLink(MAT_BLEND_B), clone);
	BaseDocument::Free(target);
}

TEST_F(MaterialPreviewTest, QualityGivesTheHaltAndTheBitmapTheSize)
{
	// Without the SDK library the video post renders nothing, so what the
	// material wrote shows alone.
	g_context = nullptr;
	const std::pair<int32_t, double> halts[] = {{MAT_PREVIEW_LOW, 24.0}, {MAT_PREVIEW_MEDIUM, 48.0},
		{MAT_PREVIEW_HIGH, 96.0}, {MAT_PREVIEW_VERY_HIGH, 192.0}, {4711, 48.0}};
	for(const auto& [quality, halt] : halts)
	{
		SCOPED_TRACE(quality);
		BaseMaterial* mat = material(MAT_TYPE_DIFFUSE);
		mat->GetDataInstance()->SetInt32(MAT_PREVIEW_QUALITY, quality);
		MaterialPreview preview(mat);
		BaseBitmap bmp;
		MaterialPreview::Settings s = settings(20);
		s.height = 12;
		s.editorPreview = quality == MAT_PREVIEW_LOW;
		const MaterialPreviewResult result = preview.generate(bmp, s);
		EXPECT_EQ(result.step, MaterialPreviewStep::Answered);
		EXPECT_EQ(result.result, RENDERRESULT_OK);
		EXPECT_EQ(haltValue(preview), halt);
		expectValues(*preview.GetScene()->GetActiveRenderData()->GetDataInstance(),
			{{RDATA_XRES, 20}, {RDATA_YRES, 12}, {5002, 1}});
		EXPECT_EQ(preview.GetScene()->GetActiveRenderData()->GetDataInstance()->GetInt32(5300), s.editorPreview);
	}
}

TEST_F(MaterialPreviewTest, NothingToRenderFailsOnceAndLatches)
{
	const std::pair<int32_t, int32_t> cases[] = {
		{MAT_TYPE_BLEND, MAT_PREVIEW_MEDIUM}, // a blend without inputs
		{MAT_TYPE_DIFFUSE, MAT_PREVIEW_OFF},
	};
	for(const auto& [kind, quality] : cases)
	{
		SCOPED_TRACE(kind);
		BaseMaterial* mat = newMaterial(kind);
		mat->GetDataInstance()->SetInt32(MAT_PREVIEW_QUALITY, quality);
		MaterialPreview preview(mat);
		BaseBitmap bmp;
		MaterialPreviewResult result = preview.generate(bmp, settings());
		EXPECT_EQ(result.step, MaterialPreviewStep::Answered);
		EXPECT_EQ(result.result, RENDERRESULT_RENDER_FAILED);
		EXPECT_TRUE(plugin(mat)->HasPreviewFailed());
		// No render was set up: the halt keeps the video post's default.
		EXPECT_EQ(haltValue(preview), -1.0);
		result = preview.generate(bmp, settings());
		EXPECT_EQ(result.step, MaterialPreviewStep::GenerateRefused);
		EXPECT_EQ(result.result, RENDERRESULT_FAILED);
	}
}

TEST_F(MaterialPreviewTest, WithoutSceneOrOwnPreviewTheHostSaysSo)
{
	BaseMaterial* standard = BaseMaterial::Alloc(Mmaterial);
	doc->InsertMaterial(standard);
	MaterialPreview host_material(standard);
	BaseBitmap bmp;
	EXPECT_EQ(host_material.generate(bmp, settings()).step, MaterialPreviewStep::NotHandled);

	PreviewScenes::get().clear();
	MaterialPreview preview(material(MAT_TYPE_DIFFUSE));
	const MaterialPreviewResult result = preview.generate(bmp, settings());
	EXPECT_EQ(result.step, MaterialPreviewStep::NoScene);
	EXPECT_EQ(result.result, RENDERRESULT_FAILED);
	EXPECT_EQ(preview.GetScene(), nullptr);
	EXPECT_EQ(result.describe(), String("No preview scene is registered for the material."));
}

#ifdef STANDIN_RENDERER_DIR

TEST_F(MaterialPreviewTest, EveryKindRendersAPicture)
{
	for(int32_t kind : {MAT_TYPE_DIFFUSE, MAT_TYPE_OREN_NAYAR, MAT_TYPE_PHONG, MAT_TYPE_DIFFUSE_TRANSMITTER,
			MAT_TYPE_SPECULAR, MAT_TYPE_BLEND, MAT_TYPE_GLOSSY_TRANSPARENT, MAT_TYPE_NULL, MAT_TYPE_COATING,
			MAT_TYPE_DOUBLE_SIDED_THIN})
	{
		SCOPED_TRACE(kind);
		BaseMaterial* mat = material(kind);
		mat->GetDataInstance()->SetInt32(MAT_PREVIEW_QUALITY, MAT_PREVIEW_LOW);
		MaterialPreview preview(mat);
		BaseBitmap bmp;
		const MaterialPreviewResult result = preview.generate(bmp, settings(8));
		EXPECT_EQ(result.step, MaterialPreviewStep::Answered);
		EXPECT_EQ(result.result, RENDERRESULT_OK);
		ASSERT_EQ(bmp.GetBw(), 8);
		// Lit, not black: the picture's mean is well above black.
		const Rgb mean = meanOf(bmp, 0, 0, 8);
		EXPECT_GT(mean.r + mean.g + mean.b, 150);
		EXPECT_FALSE(plugin(mat)->HasPreviewFailed());
	}
}

TEST_F(MaterialPreviewTest, RedDiffuseIsRedOnTheObjectOnly)
{
	BaseBitmap red, blue;
	for(auto [colour, bmp] : {std::make_pair(Vector(0.8, 0.05, 0.05), &red), std::make_pair(Vector(0.05, 0.05, 0.8), &blue)})
	{
		HostClock::get().fixTime(1000);
		HostClock::get().fixSeed(4711);
		BaseMaterial* mat = material(MAT_TYPE_DIFFUSE, colour);
		mat->GetDataInstance()->SetInt32(MAT_PREVIEW_QUALITY, MAT_PREVIEW_LOW);
		MaterialPreview preview(mat);
		ASSERT_EQ(preview.generate(*bmp, settings(16)).result, RENDERRESULT_OK);
	}
	// The sphere fills the middle of the picture.
	const Rgb middle_red = meanOf(red, 6, 6, 4), middle_blue = meanOf(blue, 6, 6, 4);
	EXPECT_GT(middle_red.r, 3 * middle_red.g);
	EXPECT_GT(middle_red.r, 3 * middle_red.b);
	EXPECT_GT(middle_blue.b, 3 * middle_blue.r);
	// The corners see the grey background behind either sphere: none of the
	// sphere's colour spills there. (Their brightness differs: the exposure
	// follows the picture's key, which the sphere's colour moves.)
	for(const auto& [x, y] : {std::make_pair(0, 0), std::make_pair(13, 0), std::make_pair(0, 13), std::make_pair(13, 13)})
	{
		SCOPED_TRACE(testing::Message() << x << ", " << y);
		for(const Rgb& corner : {meanOf(red, x, y, 3), meanOf(blue, x, y, 3)})
		{
			EXPECT_GT(corner.g, 40);
			EXPECT_LT(std::abs(corner.r - corner.g), 20);
			EXPECT_LT(std::abs(corner.b - corner.g), 20);
		}
	}
}

TEST_F(MaterialPreviewTest, PreviewWhileARenderHoldsTheRenderer)
{
	BaseMaterial* mat = material(MAT_TYPE_DIFFUSE);
	mat->GetDataInstance()->SetInt32(MAT_PREVIEW_QUALITY, MAT_PREVIEW_LOW);
	// A render of a preview scene of its own that runs until broken off.
	MaterialPreview running(mat);
	BaseBitmap bmp;
	ASSERT_EQ(running.generate(bmp, settings(8)).result, RENDERRESULT_OK);
	BaseDocument* scene = running.GetScene();
	findVideoPostContainer(scene)->SetFloat(vp_halt_spp, -1);
	findVideoPostContainer(scene)->SetInt32(vp_material_preview, 0);
	BaseBitmap rendered;
	RenderThread thread(scene, &rendered);
	ASSERT_TRUE(thread.Start(String("Render")));
	const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
	auto holding = [] {
		RenderState& state = renderState();
		std::lock_guard<std::mutex> guard(state.lock);
		return state.renderer.nonNull() && state.renderer->getSamplesPerPixel() >= 1;
	};
	while(!holding() && std::chrono::steady_clock::now() < end)
		std::this_thread::sleep_for(std::chrono::milliseconds(5));
	ASSERT_TRUE(holding());

	MaterialPreview preview(material(MAT_TYPE_DIFFUSE));
	BaseBitmap picture;
	const MaterialPreviewResult result = preview.generate(picture, settings(8));
	EXPECT_EQ(result.result, RENDERRESULT_OK);
	EXPECT_EQ(picture.GetBw(), 8);

	thread.End(true);
	EXPECT_EQ(thread.GetResult(), RENDERRESULT_OK);
	EXPECT_EQ(rendered.GetBw(), 8);
}

#endif

} // namespace
