#include "scene/scene_node_tonemapping.h"

#include "scene/xml_write.h"

namespace Velorn
{

SceneNodeTonemapping::SceneNodeTonemapping(double linear_scale_) : linear_scale(linear_scale_), tone_mapping_type(Linear)
{
	name = "Tone Mapping";
}

SceneNodeTonemapping::SceneNodeTonemapping(double pre_scale_, double post_scale_, double burn_)
	: pre_scale(pre_scale_), post_scale(post_scale_), burn(burn_), tone_mapping_type(Reinhard)
{
	name = "Tone Mapping";
}

SceneNodeTonemapping::SceneNodeTonemapping(const String& response_function_path_, double ev_adjust_, double film_iso_)
	: response_function_path(response_function_path_), film_iso(film_iso_), ev_adjust(ev_adjust_), tone_mapping_type(CameraResponse)
{
	name = "Tone Mapping";
}

Reference<SceneNode> SceneNodeTonemapping::clone() const
{
	Reference<SceneNodeTonemapping> copy(new SceneNodeTonemapping());
	copyBaseFieldsTo(*copy);
	copy->linear_scale = linear_scale;
	copy->pre_scale = pre_scale;
	copy->post_scale = post_scale;
	copy->burn = burn;
	copy->response_function_path = response_function_path;
	copy->film_iso = film_iso;
	copy->ev_adjust = ev_adjust;
	copy->tone_mapping_type = tone_mapping_type;
	return copy;
}

void SceneNodeTonemapping::writeKind(OStream& stream, unsigned depth) const
{
	using namespace XMLWrite;
	switch(tone_mapping_type)
	{
	case Linear:
		writeOpenTag(stream, depth, "linear");
		writeDouble(stream, depth + 1, "scale", linear_scale);
		writeCloseTag(stream, depth, "linear");
		break;
	case Reinhard:
		writeOpenTag(stream, depth, "reinhard");
		writeDouble(stream, depth + 1, "pre_scale", pre_scale);
		writeDouble(stream, depth + 1, "post_scale", post_scale);
		writeDouble(stream, depth + 1, "burn", burn);
		writeCloseTag(stream, depth, "reinhard");
		break;
	case CameraResponse:
		writeOpenTag(stream, depth, "camera");
		writeString(stream, depth + 1, "response_function_path", response_function_path);
		writeDouble(stream, depth + 1, "film_iso", film_iso);
		writeDouble(stream, depth + 1, "ev_adjust", ev_adjust);
		writeCloseTag(stream, depth, "camera");
		break;
	default:
		break;
	}
}

void SceneNodeTonemapping::writeXML(OStream& stream, unsigned depth, WriteContext&) const
{
	XMLWrite::writeOpenTag(stream, depth, "tonemapping");
	writeUIDAndName(stream, depth + 1);
	writeKind(stream, depth + 1);
	XMLWrite::writeCloseTag(stream, depth, "tonemapping");
}

void SceneNodeTonemapping::doVisit(VisitOperation& op)
{
	if(op.type == VisitOperation::OffsetUIDs)
		uid = uid + op.uid_offset;
}

bool SceneNodeTonemapping::kindValuesEqual(const SceneNodeTonemapping& o) const
{
	switch(tone_mapping_type)
	{
	case Linear:
		return linear_scale == o.linear_scale;
	case Reinhard:
		return pre_scale == o.pre_scale && post_scale == o.post_scale && burn == o.burn;
	case CameraResponse:
		return response_function_path == o.response_function_path && film_iso == o.film_iso && ev_adjust == o.ev_adjust;
	default:
		return true;
	}
}

bool SceneNodeTonemapping::doIsEqual(const SceneNode& other) const
{
	if(!baseFieldsEqual(other) || other.getType() != getType())
		return false;
	const SceneNodeTonemapping& o = static_cast<const SceneNodeTonemapping&>(other);
	return tone_mapping_type == o.tone_mapping_type && kindValuesEqual(o);
}

} // namespace Velorn
