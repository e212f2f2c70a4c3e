#include "c4d/base_bitmap.h"
#include "c4d/base_draw.h"
#include "c4d/picture_test_helpers.h"

#include <gtest/gtest.h>

#include <vector>

// The safe frame fits the render's picture into the view.
TEST(BaseDraw, SafeFrame)
{
	BaseDocument* doc = BaseDocument::Alloc();
	const struct
	{
		int32_t view_w, view_h, render_w, render_h, cut, size, kind;
	} cases[] = {
		{400, 400, 800, 400, 100, 299, SAFEFRAME_ROWS},
		{400, 400, 400, 800, 100, 299, SAFEFRAME_COLUMNS},
		{640, 480, 800, 600, 0, 639, SAFEFRAME_NONE},
		{300, 200, 100, 100, 50, 249, SAFEFRAME_COLUMNS},
	};
	for(const auto& c : cases)
	{
		SCOPED_TRACE(c.render_w);
		doc->GetActiveRenderData()->GetDataInstance()->SetInt32(RDATA_XRES, c.render_w);
		doc->GetActiveRenderData()->GetDataInstance()->SetInt32(RDATA_YRES, c.render_h);
		BaseDraw view(c.view_w, c.view_h);
		view.SetDocument(doc);
		int32_t cut, size, kind;
		view.GetSafeFrame(&cut, &size, &kind);
		EXPECT_EQ(std::vector<int32_t>({cut, size, kind}), std::vector<int32_t>({c.cut, c.size, c.kind}));
	}
	BaseDocument::Free(doc);
}

// 3D lines go through the camera: 36 mm on 36 mm film shows 200 pixels for
// each unit of x / z in a view 200 wide.
TEST(BaseDraw, RasterisesProjectedLines)
{
	BaseDraw view(200, 100);
	view.SetPen(Vector(0, 1, 0));
	view.SetMatrix_Matrix(nullptr, Matrix());
	// x from -10 to 10 at z 100: columns 79.5 to 119.5 on row 49.5.
	view.DrawLine(Vector(-10, 0, 100), Vector(10, 0, 100));
	// Behind the camera: nothing.
	view.DrawLine(Vector(-10, 20, -100), Vector(10, 20, -100));
	// Through the camera's plane: only the part in front shows, coming in
	// from below the view and ending at (119.5, 69.5).
	view.SetPen(Vector(0, 0, 1));
	view.DrawLine(Vector(-10, -10, -50), Vector(10, -10, 100));
	ASSERT_EQ(view.calls().size(), 6u);

	BaseBitmap bmp;
	ASSERT_TRUE(view.rasterise(bmp));
	const Rgb green = {0, 255, 0}, blue = {0, 0, 255};
	EXPECT_EQ(pixelOf(bmp, 100, 50), green);
	EXPECT_EQ(pixelOf(bmp, 80, 50), green);
	EXPECT_EQ(pixelOf(bmp, 119, 50), green);
	EXPECT_NE(pixelOf(bmp, 75, 50), green);
	EXPECT_NE(pixelOf(bmp, 124, 50), green);
	EXPECT_EQ(pixelOf(bmp, 120, 70), blue);
	int32_t above = 0, below = 0;
	for(int32_t y = 0; y < 100; ++y)
		for(int32_t x = 0; x < 200; ++x)
			if(pixelOf(bmp, x, y) == blue)
				(y < 70 ? above : below) += 1;
	EXPECT_EQ(above, 0);
	EXPECT_GT(below, 10);
	// The ground is dark grey.
	EXPECT_EQ(pixelOf(bmp, 5, 5), (Rgb{60, 60, 60}));
}
