#include "host/camera_tag.h"

#include "c4d/base_draw.h"
#include "c4d/base_list.h"
#include "c4d/base_tag.h"
#include "c4d/description.h"
#include "host/description_visibility.h"
#include "host/plugin_ids.h"
#include "host/registration.h"

#include <cmath>

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

void CameraTag::Free(GeListNode* node)
{
	BaseObject* op = static_cast<BaseTag*>(node)->GetObject();
	if(!op || op->GetType() != Ocamera)
		return;
	// The scale is the length of the axes: each axis keeps its direction
	// and gets the length 1.
	Matrix ml = op->GetMl();
	for(Vector* axis : {&ml.v1, &ml.v2, &ml.v3})
		if(axis->GetLength() > 0)
			*axis = axis->GetNormalized();
	op->SetMl(ml);
}

bool CameraTag::GetDDescription(GeListNode* node, Description* description, int32_t& flags)
{
	if(!description->LoadDescription(ID_CAMERA_TAG))
		return false;
	const BaseContainer& data = *static_cast<BaseList2D*>(node)->GetDataInstance();

	switch(data.GetInt32(ct_tonemap))
	{
	case ct_tonemap_linear:
		hide(description, {ct_post_scale, ct_burn, ct_group_camera_response});
		break;
	case ct_tonemap_reinhard:
		show(description, {ct_post_scale, ct_burn});
		hide(description, {ct_group_camera_response});
		break;
	case ct_tonemap_camera:
		show(description, {ct_group_camera_response});
		hide(description, {ct_group_scale});
		break;
	default:
		break;
	}

	switch(data.GetInt32(ct_aperture))
	{
	case ct_aperture_circular:
		hide(description, {ct_group_generated_aperture, ct_group_aperture_image});
		break;
	case ct_aperture_generated:
		show(description, {ct_group_generated_aperture});
		hide(description, {ct_group_aperture_image});
		break;
	case ct_aperture_image:
		show(description, {ct_group_aperture_image});
		hide(description, {ct_group_generated_aperture});
		break;
	default:
		break;
	}

	setHidden(description, {ct_splat_blur, ct_splat_ring}, data.GetInt32(ct_splat_filter) != ct_filter_mn_cubic);
	setHidden(description, {ct_downsize_blur, ct_downsize_ring, ct_downsize_radius},
		data.GetInt32(ct_downsize_filter) != ct_filter_mn_cubic);
	if(!data.GetBool(ct_region))
		hide(description, {ct_group_region});

	flags |= DESCFLAGS_DESC_LOADED;
	return true;
}

bool CameraTag::GetDEnabling(
	GeListNode* node, const DescID& id, const GeData& t_data, int32_t flags, const BaseContainer* itemdesc)
{
	if(id[0].id == ct_obstacle_map_file)
		return static_cast<BaseList2D*>(node)->GetDataInstance()->GetBool(ct_obstacle_map);
	return TagData::GetDEnabling(node, id, t_data, flags, itemdesc);
}

bool CameraTag::GetDParameter(GeListNode* node, const DescID& id, GeData& t_data, int32_t& flags)
{
	const BaseContainer* data = static_cast<BaseList2D*>(node)->GetDataInstance();
	exposure_divisor = data->GetFloat(ct_exposure_divisor);
	f_number = data->GetFloat(ct_f_number);
	return TagData::GetDParameter(node, id, t_data, flags);
}

bool CameraTag::Draw(BaseTag* tag, BaseObject* op, BaseDraw* bd, BaseDrawHelp* bh)
{
	const BaseContainer& data = *tag->GetDataInstance();
	BaseDocument* doc = bh ? bh->GetDocument() : op->GetDocument();
	if(!data.GetBool(ct_region) || !doc)
		return true;
	BaseObject* camera = bd->GetSceneCamera(doc);
	if(!camera || camera->GetType() != Ocamera || camera != op)
		return true;

	const BaseContainer& render = *doc->GetActiveRenderData()->GetDataInstance();
	const double render_width = render.GetFloat(RDATA_XRES);
	const double render_height = render.GetFloat(RDATA_YRES);
	int32_t left, top, right, bottom;
	bd->GetFrame(&left, &top, &right, &bottom);
	int32_t cut, size, kind;
	bd->GetSafeFrame(&cut, &size, &kind);

	double x1 = data.GetInt32(ct_region_x1, 10);
	double x2 = data.GetInt32(ct_region_x2, 10);
	double y1 = data.GetInt32(ct_region_y1, 20);
	double y2 = data.GetInt32(ct_region_y2, 20);
	bd->SetPen(Vector(1, 0, 0));

	// The region is in pixels of the render; the safe frame is where the
	// render's picture lies in the view.
	if(kind == 2)
	{
		const double s = (size - cut) / render_height;
		const double sx = right / render_width;
		x1 *= sx;
		x2 *= sx;
		y1 = s * y1 + cut + 1.0;
		y2 = s * y2 + cut + 1.0;
	}
	else if(kind == 1)
	{
		const double s = (size - cut) / render_width;
		const double sy = bottom / render_height;
		x1 = s * x1 + cut + 1.0;
		x2 = s * x2 + cut + 1.0;
		y1 *= sy;
		y2 *= sy;
	}

	bd->SetDrawParam(DRAW_PARAMETER_SETTING, GeData(20));
	bd->DrawLine2D(Vector(x1, y1, 0), Vector(x2, y1, 0));
	bd->DrawLine2D(Vector(x1, y2, 0), Vector(x2, y2, 0));
	bd->DrawLine2D(Vector(x1, y2, 0), Vector(x1, y1, 0));
	bd->DrawLine2D(Vector(x2, y1, 0), Vector(x2, y2, 0));
	return true;
}

bool RegisterCameraTag()
{
	return registerTag(ID_CAMERA_TAG, 10009, CameraTag::Alloc, "TCameraTag", "CameraTag.tif");
}
