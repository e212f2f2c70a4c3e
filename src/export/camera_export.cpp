#include "export/camera_export.h"

#include "c4d/base_draw.h"
#include "c4d/console.h"
#include "export/host_space.h"
#include "export/motion_blur_export.h"
#include "host/plugin_ids.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace
{

struct WhitePointRow
{
	int32_t value;
	double x, y;
};

// The standard illuminants that the camera tag offers, by their CIE 1931
// chromaticity.
const WhitePointRow white_points[] = {
	{1905, 0.333333333333, 0.3333333333333}, // E
	{1906, 0.34567, 0.3585},                 // D50
	{1907, 0.33242, 0.34743},                // D55
	{1908, 0.31273, 0.32902},                // D65
	{1909, 0.29902, 0.31485},                // D75
	{1910, 0.44757, 0.40745},                // A
	{1911, 0.34842, 0.35161},                // B
	{1912, 0.31006, 0.31616},                // C
	{1913, 0.2848, 0.2932},                  // 9300
	{1914, 0.37207, 0.37512},                // F2
	{1915, 0.31285, 0.32918},                // F7
	{1916, 0.38054, 0.37691},                // F11
};

const int32_t white_point_d65 = 1908;

// The files as the renderer's installation names them; the misspelt
// "ctpecisa" is the true name of that file.
const char* const response_functions[] = {"Advantix-100CD.txt", "Advantix-200CD.txt", "Advantix-400CD.txt",
	"agfachrome-ctpecisa-200CD.txt", "agfachrome-ctprecisa-100CD.txt", "agfachrome-rsx2-050CD.txt",
	"agfachrome-rsx2-100CD.txt", "agfachrome-rsx2-200CD.txt", "agfacolor-futura-100CD.txt",
	"agfacolor-futura-200CD.txt", "agfacolor-futura-400CD.txt", "agfacolor-futuraII-100CD.txt",
	"agfacolor-futuraII-200CD.txt", "agfacolor-futuraII-400C.txt", "agfacolor-hdc-100-plusCD.txt",
	"agfacolor-hdc-200-plusCD.txt", "agfacolor-hdc-400-plusCD.txt", "agfacolor-optimaII-100CD.txt",
	"agfacolor-optimaII-200CD.txt", "agfacolor-ultra-050-CD.txt", "agfacolor-vista-100CD.txt",
	"agfacolor-vista-200CD.txt", "agfacolor-vista-400CD.txt", "agfacolor-vista-800CD.txt", "agfapan-apx-025CD.txt",
	"agfapan-apx-100CD.txt", "agfapan-apx-400-sCD.txt", "agfapan-apx-400CD.txt", "dscs315.txt", "dscs315_2.txt",
	"dscs315_3.txt", "dscs315_4.txt", "dscs315_5.txt", "dscs315_6.txt", "Ektachrome-100-plusCD.txt",
	"Ektachrome-100CD.txt", "Ektachrome-320TCD.txt", "Ektachrome-400XCD.txt", "Ektachrome-64CD.txt",
	"Ektachrome-64TCD.txt", "Ektachrome-E100SCD.txt", "F125CD.txt", "F250CD.txt", "F400CD.txt", "FCICD.txt",
	"FP2900Z.txt", "Gold-100CD.txt", "Gold-200CD.txt", "Kodachrome-200CD.txt", "Kodachrome-25.txt",
	"Kodachrome-64CD.txt", "Max-Zoom-800CD.txt", "Portra-100TCD.txt", "Portra-160NCCD.txt", "Portra-160VCCD.txt",
	"Portra-400NCCD.txt", "Portra-400VCCD.txt", "Portra-800CD.txt"};

// The text a file parameter holds; the fallback when there is none.
Velorn::String filePath(const BaseContainer& data, int32_t id)
{
	return Velorn::String(data.GetFilename(id, Filename("element not found")).GetString().GetStdString());
}

void exportSplatFilter(Velorn::SceneNodeRenderSettings& node, const BaseContainer& tag)
{
	switch(tag.GetInt32(ct_splat_filter))
	{
	case ct_filter_mn_cubic:
		// B of the Mitchell-Netravali cubic is its blur, C its ring.
		node.setSplatFilter(new Velorn::SplatFilterMNCubic(tag.GetFloat(ct_splat_ring), tag.GetFloat(ct_splat_blur)));
		break;
	case ct_filter_radial:
		node.setSplatFilter(new Velorn::SplatFilterRadial());
		break;
	default:
		node.setSplatFilter(new Velorn::SplatFilterFastBox());
		break;
	}
}

void exportDownsizeFilter(Velorn::SceneNodeRenderSettings& node, const BaseContainer& tag)
{
	switch(tag.GetInt32(ct_downsize_filter))
	{
	case ct_filter_mn_cubic:
		node.setDownsizeFilter(new Velorn::DownsizeFilterMNCubic(tag.GetFloat(ct_downsize_ring, 1.0),
			tag.GetFloat(ct_downsize_blur), tag.GetFloat(ct_downsize_radius, 1.6)));
		break;
	case ct_filter_gaussian:
		node.setDownsizeFilter(new Velorn::DownsizeFilterGaussian());
		break;
	default:
		node.setDownsizeFilter(new Velorn::DownsizeFilterSharp());
		break;
	}
}

void exportRenderRegion(Velorn::SceneNodeRenderSettings& node, const BaseContainer& tag)
{
	if(tag.GetInt32(ct_region) != 1)
		return;
	const int32_t x1 = tag.GetInt32(ct_region_x1), x2 = tag.GetInt32(ct_region_x2);
	const int32_t y1 = tag.GetInt32(ct_region_y1), y2 = tag.GetInt32(ct_region_y2);
	node.setRenderRegion(
		new Velorn::RenderRegion(std::min(x1, x2), std::max(x1, x2), std::min(y1, y2), std::max(y1, y2)));
}

// What only the camera tag sets on the render settings.
void exportTagSettings(Velorn::SceneNodeRenderSettings& node, const BaseContainer& tag)
{
	node.setInt("super_sample_factor", tag.GetInt32(ct_super_sample, 1));
	exportSplatFilter(node, tag);
	exportDownsizeFilter(node, tag);
	node.setBool("watermark", tag.GetBool(ct_watermark));
	node.setBool("info_overlay", tag.GetBool(ct_info_overlay));
	exportRenderRegion(node, tag);
}

void exportWhitePoint(Velorn::SceneNodeRenderSettings& node, const ExportSettings& settings)
{
	const int32_t value =
		settings.has_camera_tag ? settings.camera_tag_data.GetInt32(ct_white_point, 1905) : white_point_d65;
	const auto row = std::find_if(std::begin(white_points), std::end(white_points),
		[value](const WhitePointRow& r) { return r.value == value; });
	if(row == std::end(white_points))
		node.setWhitePoint(0, 0);
	else
		node.setWhitePoint(row->x, row->y);
}

// The settings of the whole render that the camera decides.
void exportCameraSettings(Velorn::SceneNodeRenderSettings& node, const ExportSettings& settings)
{
	const BaseContainer& tag = settings.camera_tag_data;
	if(settings.has_camera_tag)
		exportTagSettings(node, tag);
	node.setInt("width", settings.width);
	node.setInt("height", settings.height);
	node.setBool("post_process_diffraction",
		settings.has_camera_tag && tag.GetInt32(ct_diffraction_mode) != ct_diffraction_none);
	node.setBool("aperture_diffraction", settings.has_camera_tag && tag.GetBool(ct_aperture_diffraction));
	exportWhitePoint(node, settings);
}

Velorn::Reference<Velorn::ApertureShape> apertureShape(const BaseContainer& tag)
{
	switch(tag.GetInt32(ct_aperture, ct_aperture_circular))
	{
	case ct_aperture_circular:
		return new Velorn::ApertureCircular();
	case ct_aperture_generated:
		return new Velorn::ApertureGenerated(tag.GetInt32(ct_num_blades), tag.GetFloat(ct_blade_offset),
			tag.GetFloat(ct_blade_curvature_radius), tag.GetFloat(ct_start_angle));
	case ct_aperture_image:
		return new Velorn::ApertureImage(filePath(tag, ct_aperture_image_file));
	default:
		return nullptr;
	}
}

// Where the camera stands and looks: keyframes over the exposure under a
// motion blur tag, else one position with the up and forward axes. The lens
// shift moves the camera itself, along its own axes; o is subtracted after
// the exchange of y and z, each component by its own name.
void placeCamera(Velorn::SceneNodeCamera& node, const Matrix& mg, const Vector& o, const ExportSettings& settings)
{
	if(exportMotionBlur(node.keyframes, settings.camera, mg, settings, objectChain(settings.camera), o))
		return;
	const double s = settings.scale;
	const Velorn::Vec3d pos(mg.off.x * s - o.x, mg.off.z * s - o.z, mg.off.y * s - o.y);
	node.keyframes.clear();
	node.keyframes.push_back(Velorn::KeyFrame{pos, 0, Velorn::Vec3d(0, 0, 1), 0});
	node.up = swapYZ(mg.v2);
	node.forwards = swapYZ(mg.v3);
}

} // namespace

bool exportCamera(Velorn::SceneNodeCamera& camera_node, Velorn::SceneNodeRenderSettings* settings_node,
	const ExportSettings& settings)
{
	if(settings_node)
		exportCameraSettings(*settings_node, settings);

	const BaseContainer& cam = settings.camera_data;
	const BaseContainer& tag = settings.camera_tag_data;
	const double s = settings.scale;

	camera_node.exposure_duration = settings.exposure_duration;
	camera_node.focus_distance = cam.GetFloat(CAMERA_TARGET_DISTANCE) * s;

	const double sensor_width = cam.GetFloat(CAMERA_SENSOR_WIDTH, 36.0);
	const double sensor_m = sensor_width * 0.001;
	GePrint(String::FloatToString(sensor_width));

	if(cam.GetInt32(CAMERA_PROJECTION) == CAMERA_PROJECTION_PARALLEL)
	{
		camera_node.camera_type = Velorn::SceneNodeCamera::Orthographic;
		camera_node.sensor_width = (1024.0 / cam.GetFloat(CAMERA_ZOOM)) * s;
	}
	else
	{
		camera_node.camera_type = Velorn::SceneNodeCamera::ThinLensPerspective;
		camera_node.sensor_width = sensor_m;
	}

	const double fov = cam.GetFloat(CAMERA_FOV);
	camera_node.lens_sensor_dist = (float)(sensor_m / (2.0 * std::tan(fov / 2.0)));
	const double focal_length = 1.0 / (1.0 / camera_node.lens_sensor_dist + 1.0 / camera_node.focus_distance);
	const double f_number = settings.has_camera_tag ? tag.GetFloat(ct_f_number) : 8.0;
	camera_node.aperture_radius = focal_length / (2.0 * f_number);

	if(Velorn::Reference<Velorn::ApertureShape> shape = apertureShape(tag))
		camera_node.aperture_shape = shape;
	if(tag.GetBool(ct_obstacle_map))
		camera_node.obstacle_map_path = filePath(tag, ct_obstacle_map_file);
	camera_node.autofocus = settings.has_camera_tag ? tag.GetInt32(ct_autofocus) == 1 : true;

	const double aspect = (double)settings.width / settings.height;
	camera_node.lens_shift_up_distance = cam.GetFloat(CAMERA_FILM_OFFSET_Y) * (-1.0 / aspect) * sensor_m;
	camera_node.lens_shift_right_distance = cam.GetFloat(CAMERA_FILM_OFFSET_X) * sensor_m;

	const Matrix mg = settings.camera->GetMg();
	const Vector o = mg.v1 * camera_node.lens_shift_right_distance + mg.v2 * camera_node.lens_shift_up_distance;
	placeCamera(camera_node, mg, o, settings);
	return true;
}

bool exportTonemapping(Velorn::SceneNodeTonemapping& node, const ExportSettings& settings)
{
	const BaseContainer& tag = settings.camera_tag_data;
	switch(tag.GetInt32(ct_tonemap, ct_tonemap_reinhard))
	{
	case ct_tonemap_linear:
		node.tone_mapping_type = Velorn::SceneNodeTonemapping::Linear;
		node.linear_scale = tag.GetFloat(ct_tonemap_scale);
		break;
	case ct_tonemap_camera:
		node.tone_mapping_type = Velorn::SceneNodeTonemapping::CameraResponse;
		node.film_iso = tag.GetFloat(ct_film_iso);
		node.ev_adjust = tag.GetFloat(ct_ev_adjust);
		if(const char* file = responseFunctionFile(tag.GetInt32(ct_response_function)))
			node.response_function_path = Velorn::String("data/camera_response_functions/") + file;
		break;
	default:
		node.tone_mapping_type = Velorn::SceneNodeTonemapping::Reinhard;
		node.pre_scale = tag.GetFloat(ct_tonemap_scale);
		node.post_scale = tag.GetFloat(ct_post_scale);
		node.burn = tag.GetFloat(ct_burn);
		break;
	}
	return true;
}

const char* responseFunctionFile(int32_t index)
{
	if(index < 0 || index >= (int32_t)std::size(response_functions))
		return nullptr;
	return response_functions[index];
}
