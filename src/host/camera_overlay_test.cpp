// The camera tag's render region over the view, rasterised: red on the
// rectangle's edges where the safe frame puts them, nothing elsewhere.

#include "c4d/base_bitmap.h"
#include "c4d/base_draw.h"
#include "c4d/base_tag.h"
#include "host/camera_tag.h"
#include "host/host_test_helpers.h"
#include "host/plugin_ids.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace
{

class CameraOverlayTest : public HostPluginTest
{
protected:
	void SetUp() override { registerPlugins({RegisterCameraTag}); }

	// A camera with a region tag, active in a document rendering w by h.
	BaseTag* regionCamera(int32_t render_w, int32_t render_h, int32_t x1, int32_t x2, int32_t y1, int32_t y2)
	{
		BaseContainer* rd = doc->GetActiveRenderData()->GetDataInstance();
		rd->SetInt32(RDATA_XRES, render_w);
		rd->SetInt32(RDATA_YRES, render_h);
		BaseObject* camera = addObject(Ocamera, "camera");
		doc->SetActiveCamera(camera);
		BaseTag* tag = camera->MakeTag(ID_CAMERA_TAG);
		tag->SetParameter(DescID(ct_region), GeData(1));
		tag->SetParameter(DescID(ct_region_x1), GeData(x1));
		tag->SetParameter(DescID(ct_region_x2), GeData(x2));
		tag->SetParameter(DescID(ct_region_y1), GeData(y1));
		tag->SetParameter(DescID(ct_region_y2), GeData(y2));
		return tag;
	}

	static bool isRed(const BaseBitmap& bmp, int32_t x, int32_t y)
	{
		uint16_t r, g, b;
		bmp.GetPixel(x, y, &r, &g, &b);
		return r == 255 && g == 0 && b == 0;
	}

	static int32_t redCount(const BaseBitmap& bmp)
	{
		int32_t count = 0;
		for(int32_t y = 0; y < bmp.GetBh(); ++y)
			for(int32_t x = 0; x < bmp.GetBw(); ++x)
				count += isRed(bmp, x, y);
		return count;
	}
};

using Pixel = std::pair<int32_t, int32_t>;

} // namespace

TEST_F(CameraOverlayTest, RegionLandsInTheSafeFrame)
{
	// Worked by hand from the view's frame (0, 0, w - 1, h - 1) and its
	// safe frame, the picture's proportions fitted into the view.
	struct Case
	{
		const char* name;
		int32_t view_w, view_h, render_w, render_h;
		int32_t x1, x2, y1, y2;
		int32_t kind;
		std::vector<Pixel> red;
		std::vector<Pixel> clear;
	} cases[] = {
		// Rows 100 to 299: s = 199 / 400; x * 399 / 800, y * s + 101.
		// x 100 -> 49.875, 700 -> 349.125; y 40 -> 120.9, 360 -> 280.1.
		{"wider picture", 400, 400, 800, 400, 100, 700, 40, 360, SAFEFRAME_ROWS,
			{{200, 121}, {200, 280}, {50, 200}, {349, 200}, {50, 121}, {349, 280}},
			{{200, 200}, {20, 121}, {200, 100}, {200, 300}, {360, 200}, {200, 20}}},
		// Columns 100 to 299: s = 199 / 400; x * s + 101, y * 399 / 800.
		{"narrower picture", 400, 400, 400, 800, 40, 360, 100, 700, SAFEFRAME_COLUMNS,
			{{121, 200}, {280, 200}, {200, 50}, {200, 349}},
			{{200, 200}, {121, 20}, {100, 200}, {300, 200}, {200, 360}}},
		// Same proportions: the region's pixels as they are.
		{"same proportions", 400, 300, 400, 300, 10, 390, 20, 280, SAFEFRAME_NONE,
			{{10, 150}, {390, 150}, {200, 20}, {200, 280}},
			{{200, 150}, {5, 150}, {200, 10}, {395, 150}, {200, 290}}},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.name);
		TearDown();
		SetUp();
		regionCamera(c.render_w, c.render_h, c.x1, c.x2, c.y1, c.y2);
		BaseDraw view(c.view_w, c.view_h);
		DrawDocument(doc, &view);
		int32_t cut, size, kind;
		view.GetSafeFrame(&cut, &size, &kind);
		EXPECT_EQ(kind, c.kind);

		BaseBitmap bmp;
		ASSERT_TRUE(view.rasterise(bmp));
		EXPECT_EQ(bmp.GetBw(), c.view_w);
		for(const Pixel& p : c.red)
			EXPECT_TRUE(isRed(bmp, p.first, p.second)) << p.first << ", " << p.second;
		for(const Pixel& p : c.clear)
			EXPECT_FALSE(isRed(bmp, p.first, p.second)) << p.first << ", " << p.second;

		// The lines go over the shaded view in the draw setting 20.
		const auto& calls = view.calls();
		const auto setting = std::find_if(calls.begin(), calls.end(),
			[](const DrawCall& call) { return call.kind == DrawCall::Kind::Setting; });
		ASSERT_NE(setting, calls.end());
		EXPECT_EQ(setting->value, 20);
	}
}

TEST_F(CameraOverlayTest, NothingOutsideItsCameraOrWithTheRegionOff)
{
	BaseTag* tag = regionCamera(800, 600, 10, 300, 10, 300);
	BaseObject* other = addObject(Ocamera, "other camera");

	BaseDraw view(400, 300);
	doc->SetActiveCamera(other);
	DrawDocument(doc, &view);
	EXPECT_TRUE(view.calls().empty());

	// Without an active camera the view shows its editor camera.
	doc->SetActiveCamera(nullptr);
	DrawDocument(doc, &view);
	EXPECT_TRUE(view.calls().empty());

	doc->SetActiveCamera(tag->GetObject());
	tag->SetParameter(DescID(ct_region), GeData(0));
	DrawDocument(doc, &view);
	EXPECT_TRUE(view.calls().empty());

	tag->SetParameter(DescID(ct_region), GeData(1));
	DrawDocument(doc, &view);
	BaseBitmap bmp;
	ASSERT_TRUE(view.rasterise(bmp));
	EXPECT_GT(redCount(bmp), 0);
}
