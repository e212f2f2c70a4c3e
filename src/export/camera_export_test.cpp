#include "export/camera_export.h"
#include "export/export_test_helpers.h"

using Velorn::ApertureGenerated;
using Velorn::ApertureImage;
using Velorn::ApertureShape;
using Velorn::DownsizeFilterMNCubic;
using Velorn::Reference;
using Velorn::SceneNodeCamera;
using Velorn::SceneNodeRenderSettings;
using Velorn::SceneNodeTonemapping;
using Velorn::SplatFilterMNCubic;
using Velorn::Vec3d;

// The camera without a tag and most of a tag's values are held by the
// golden scenes of scene_exporter_test.cpp; here are the tables.

namespace
{

struct Exported
{
	Reference<SceneNodeCamera> camera = new SceneNodeCamera();
	Reference<SceneNodeRenderSettings> settings = SceneNodeRenderSettings::getDefaults();
	Reference<SceneNodeTonemapping> tonemapping = new SceneNodeTonemapping();
};

Exported exportFrom(TestDocument& d, int32_t width = 640, int32_t height = 480)
{
	Exported e;
	ExportSettings s = d.settings(width, height);
	EXPECT_TRUE(exportCamera(*e.camera, e.settings.getPointer(), s));
	EXPECT_TRUE(exportTonemapping(*e.tonemapping, s));
	return e;
}

std::vector<double> reinhard(const SceneNodeTonemapping& t) { return {t.pre_scale, t.post_scale, t.burn}; }

} // namespace

TEST_F(ExportTest, NewCameraTagExportsItsInitValues)
{
	TestDocument d;
	d.tag();
	const Exported e = exportFrom(d);
	EXPECT_EQ(e.settings->getInt("super_sample_factor"), 2);
	EXPECT_EQ(e.settings->splat_filter->getType(), 0u); // 1975 is no filter of the table
	const auto& downsize = dynamic_cast<const DownsizeFilterMNCubic&>(*e.settings->downsize_filter);
	EXPECT_EQ((std::vector<double>{downsize.blur, downsize.ring, downsize.radius}), (std::vector<double>{0, 1, 1.7}));
	EXPECT_TRUE(e.settings->getBool("post_process_diffraction"));
	EXPECT_TRUE(e.settings->render_region.isNull());
	EXPECT_EQ(e.settings->white_point->x, 0.31273); // D65
	EXPECT_EQ(e.camera->exposure_duration, (double)0.002f);
	EXPECT_DOUBLE_EQ(e.camera->aperture_radius, 0.001120964479528442); // f-number 16
	EXPECT_TRUE(e.camera->autofocus);
	EXPECT_EQ(e.tonemapping->tone_mapping_type, SceneNodeTonemapping::Reinhard);
	EXPECT_EQ(reinhard(*e.tonemapping), (std::vector<double>{3, 1, 10}));
}

// A tag that lacks its parameters, as an older document's may: each reads
// as its fallback.
TEST_F(ExportTest, CameraTagFiltersAndFallbacks)
{
	TestDocument d;
	BaseContainer& tag = d.tag();
	tag.FlushAll();
	const struct
	{
		int32_t splat, downsize;
		unsigned splat_type, downsize_type;
	} cases[] = {{1974, 1974, 2, 1}, {1998, 1976, 1, 0}, {1975, 1975, 0, 2}};
	for(const auto& t : cases)
	{
		SCOPED_TRACE(t.splat);
		tag.SetInt32(ct_splat_filter, t.splat);
		tag.SetInt32(ct_downsize_filter, t.downsize);
		const Exported e = exportFrom(d);
		EXPECT_EQ(e.settings->splat_filter->getType(), t.splat_type);
		EXPECT_EQ(e.settings->downsize_filter->getType(), t.downsize_type);
	}
	tag.SetInt32(ct_splat_filter, 1974);
	tag.SetInt32(ct_downsize_filter, 1974);
	tag.SetFloat(ct_splat_blur, 0.3);
	tag.SetFloat(ct_splat_ring, 0.35);
	tag.SetFloat(ct_f_number, 2.0);
	const Exported e = exportFrom(d);
	const auto& splat = dynamic_cast<const SplatFilterMNCubic&>(*e.settings->splat_filter);
	EXPECT_EQ((std::vector<double>{splat.blur, splat.ring}), (std::vector<double>{0.3, 0.35}));
	const auto& downsize = dynamic_cast<const DownsizeFilterMNCubic&>(*e.settings->downsize_filter);
	EXPECT_EQ((std::vector<double>{downsize.blur, downsize.ring, downsize.radius}), (std::vector<double>{0, 1, 1.6}));
	EXPECT_EQ(e.settings->getInt("super_sample_factor"), 1);
	EXPECT_EQ(e.settings->white_point->x, 0.333333333333); // E
	EXPECT_DOUBLE_EQ(e.camera->aperture_radius, 0.008967715836227536); // f-number 2
	EXPECT_FALSE(e.camera->autofocus);
	EXPECT_EQ(reinhard(*e.tonemapping), (std::vector<double>{0, 0, 0}));
}

TEST_F(ExportTest, CameraTagWhitePointsAndApertures)
{
	TestDocument d;
	BaseContainer& tag = d.tag();
	const struct
	{
		int32_t value;
		double x, y;
	} white_points[] = {{1905, 0.333333333333, 0.3333333333333}, {1906, 0.34567, 0.3585},
		{1907, 0.33242, 0.34743}, {1908, 0.31273, 0.32902}, {1909, 0.29902, 0.31485}, {1910, 0.44757, 0.40745},
		{1911, 0.34842, 0.35161}, {1912, 0.31006, 0.31616}, {1913, 0.2848, 0.2932}, {1914, 0.37207, 0.37512},
		{1915, 0.31285, 0.32918}, {1916, 0.38054, 0.37691}, {1904, 0, 0}, {1918, 0, 0}};
	for(const auto& t : white_points)
	{
		SCOPED_TRACE(t.value);
		tag.SetInt32(ct_white_point, t.value);
		const Exported e = exportFrom(d);
		EXPECT_EQ(e.settings->white_point->x, t.x);
		EXPECT_EQ(e.settings->white_point->y, t.y);
	}

	tag.SetInt32(ct_aperture, ct_aperture_image);
	tag.SetBool(ct_obstacle_map, true);
	Exported e = exportFrom(d);
	EXPECT_EQ(dynamic_cast<const ApertureImage&>(*e.camera->aperture_shape).path, Velorn::String("element not found"));
	EXPECT_EQ(e.camera->obstacle_map_path, Velorn::String("element not found"));
	tag.SetFilename(ct_aperture_image_file, Filename("iris.png"));
	EXPECT_EQ(dynamic_cast<const ApertureImage&>(*exportFrom(d).camera->aperture_shape).path, Velorn::String("iris.png"));
	tag.SetInt32(ct_aperture, 1999);
	EXPECT_EQ(exportFrom(d).camera->aperture_shape->getType(), (unsigned)ApertureShape::Circular);
}

TEST_F(ExportTest, ToneMappingKindsAndResponseFunctions)
{
	TestDocument d;
	BaseContainer& tag = d.tag();
	tag.SetFloat(ct_tonemap_scale, 2.0);
	tag.SetInt32(ct_tonemap, ct_tonemap_linear);
	Exported e = exportFrom(d);
	EXPECT_EQ(e.tonemapping->tone_mapping_type, SceneNodeTonemapping::Linear);
	EXPECT_EQ(e.tonemapping->linear_scale, 2.0);
	tag.SetInt32(ct_tonemap, 1949);
	e = exportFrom(d);
	EXPECT_EQ(e.tonemapping->tone_mapping_type, SceneNodeTonemapping::Reinhard);
	EXPECT_EQ(reinhard(*e.tonemapping), (std::vector<double>{2, 1, 10}));

	tag.SetInt32(ct_tonemap, ct_tonemap_camera);
	const struct
	{
		int32_t index;
		const char* file;
	} curves[] = {{0, "Advantix-100CD.txt"}, {3, "agfachrome-ctpecisa-200CD.txt"}, {29, "dscs315_2.txt"},
		{57, "Portra-800CD.txt"}, {58, "dscs315.txt"}}; // outside the table: the node's own
	for(const auto& t : curves)
	{
		SCOPED_TRACE(t.index);
		tag.SetInt32(ct_response_function, t.index);
		e = exportFrom(d);
		EXPECT_EQ(e.tonemapping->tone_mapping_type, SceneNodeTonemapping::CameraResponse);
		EXPECT_EQ(e.tonemapping->response_function_path.str(), std::string("data/camera_response_functions/") + t.file);
	}
	EXPECT_EQ(responseFunctionFile(-1), nullptr);
}

TEST_F(ExportTest, OrthographicCameraAndLensShiftPlacement)
{
	TestDocument d;
	BaseContainer& cam = d.cameraData();
	cam.SetInt32(CAMERA_PROJECTION, CAMERA_PROJECTION_PARALLEL);
	cam.SetFloat(CAMERA_ZOOM, 2.0);
	cam.SetFloat(CAMERA_FILM_OFFSET_X, 0.25);
	cam.SetFloat(CAMERA_FILM_OFFSET_Y, 0.25);
	d.camera->SetMl(Matrix(Vector(100, 200, 300), Vector(1, 0, 0), Vector(0, 0.6, 0.8), Vector(0, -0.8, 0.6)));
	const Exported e = exportFrom(d, 800, 400);
	const SceneNodeCamera& c = *e.camera;
	EXPECT_EQ(c.camera_type, SceneNodeCamera::Orthographic);
	EXPECT_EQ(c.sensor_width, 5.119999885559082);                // 1024 / zoom in metres
	EXPECT_EQ(c.lens_sensor_dist, 0.035999998450279236);         // as the perspective one
	EXPECT_EQ(c.lens_shift_up_distance, -0.0045000000000000005); // from the 36 mm film
	EXPECT_EQ(c.lens_shift_right_distance, 0.009000000000000001);
	ASSERT_EQ(c.keyframes.size(), 1u);
	EXPECT_EQ(c.keyframes[0].pos, Vec3d(0.9909999776482582, 3.0035999329447747, 2.0026999552965163));
	EXPECT_EQ(c.up, Vec3d(0, 0.8, 0.6));
	EXPECT_EQ(c.forwards, Vec3d(0, 0.6, -0.8));

	ExportSettings s = d.settings(800, 400);
	Reference<SceneNodeCamera> alone = new SceneNodeCamera();
	EXPECT_TRUE(exportCamera(*alone, nullptr, s)); // no settings node to set
	EXPECT_EQ(alone->keyframes[0].pos, c.keyframes[0].pos);
}
