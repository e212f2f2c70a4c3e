#include "host/camera_tag.h"

#include "c4d/base_list.h"
#include "host/plugin_ids.h"
#include "host/registration.h"

bool CameraTag::Init(GeListNode* node)
{
	BaseContainer* data = static_cast<BaseList2D*>(node)->GetDataInstance();
	// Cycles hold the id of their chosen entry; 1996 is a switch that the
	// export does not read.
	setParameters(*data, {
		{ct_white_point, 1908},
		{ct_autofocus, 1},
		{ct_exposure_divisor, 500.0},
		{ct_f_number, 16.0},
		{1996, 0},
		{ct_film_iso, 400.0},
		{ct_ev_adjust, 0.0},
		{ct_tonemap, ct_tonemap_reinhard},
		{ct_tonemap_scale, 3.0},
		{ct_post_scale, 1.0},
		{ct_burn, 10.0},
		{ct_super_sample, 2},
		{ct_watermark, 0},
		{ct_info_overlay, 0},
		{ct_aperture, ct_aperture_circular},
		{ct_num_blades, 6},
		{ct_blade_offset, 0.4},
		{ct_blade_curvature_radius, 3.0},
		{ct_start_angle, 0.2},
		{ct_splat_filter, 1975},
		{ct_downsize_filter, ct_filter_mn_cubic},
		{ct_diffraction_mode, 1982},
		{ct_aperture_diffraction, 0},
		{ct_splat_blur, 0.2},
		{ct_splat_ring, 0.6},
		{ct_downsize_blur, 0.0},
		{ct_downsize_ring, 1.0},
		{ct_downsize_radius, 1.7},
		{ct_region, 0},
		{ct_region_x1, 0},
		{ct_region_y1, 0},
		{ct_region_x2, 150},
		{ct_region_y2, 150},
		{ct_response_function, 1},
	});
	return true;
}

bool RegisterCameraTag()
{
	return registerTag(ID_CAMERA_TAG, 10009, CameraTag::Alloc, "TCameraTag", "CameraTag.tif");
}
