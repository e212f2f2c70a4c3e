#include "scene/scene_node_camera.h"

#include "scene/transform_bounds.h"
#include "scene/xml_write.h"

namespace Velorn
{

SceneNodeCamera::SceneNodeCamera() : aperture_shape(new ApertureCircular()) { name = "Camera"; }

Reference<SceneNode> SceneNodeCamera::clone() const
{
	Reference<SceneNodeCamera> copy(new SceneNodeCamera());
	copyBaseFieldsTo(*copy);
	copy->aperture_radius = aperture_radius;
	copy->focus_distance = focus_distance;
	copy->sensor_width = sensor_width;
	copy->lens_sensor_dist = lens_sensor_dist;
	copy->exposure_duration = exposure_duration;
	copy->lens_shift_up_distance = lens_shift_up_distance;
	copy->lens_shift_right_distance = lens_shift_right_distance;
	copy->autofocus = autofocus;
	copy->obstacle_map_path = obstacle_map_path;
	copy->aperture_shape = aperture_shape.nonNull() ? aperture_shape->clone() : Reference<ApertureShape>();
	copy->keyframes = keyframes;
	copy->up = up;
	copy->forwards = forwards;
	copy->camera_type = camera_type;
	return copy;
}

const char* SceneNodeCamera::cameraTypeName() const
{
	switch(camera_type)
	{
	case ThinLensPerspective:
		return "thin-lens-perspective";
	case Orthographic:
		return "orthographic";
	case Spherical:
		return "spherical";
	default:
		return "";
	}
}

void SceneNodeCamera::writeObstacleMap(OStream& stream, unsigned depth, const WriteContext& context) const
{
	XMLWrite::writeOpenTag(stream, depth, "obstacle_map");
	XMLWrite::writePath(stream, depth + 1, "path", obstacle_map_path, context);
	XMLWrite::writeCloseTag(stream, depth, "obstacle_map");
}

void SceneNodeCamera::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	using namespace XMLWrite;
	const unsigned d = depth + 1;
	writeOpenTag(stream, depth, "camera");
	writeUIDAndName(stream, d);
	writeDouble(stream, d, "aperture_radius", aperture_radius);
	writeDouble(stream, d, "focus_distance", focus_distance);
	writeDouble(stream, d, "sensor_width", sensor_width);
	writeDouble(stream, d, "lens_sensor_dist", lens_sensor_dist);
	writeDouble(stream, d, "exposure_duration", exposure_duration);
	writeDouble(stream, d, "lens_shift_up_distance", lens_shift_up_distance);
	writeDouble(stream, d, "lens_shift_right_distance", lens_shift_right_distance);
	// Files have always had autofocus one tab to the left of its neighbours.
	if(autofocus)
		writeEmptyTag(stream, depth, "autofocus");
	if(!obstacle_map_path.empty())
		writeObstacleMap(stream, d, context);
	aperture_shape->writeXML(stream, d, context);
	for(const KeyFrame& keyframe : keyframes)
		keyframe.writeXML(stream, d);
	writeVec3(stream, d, "up", up);
	writeVec3(stream, d, "forwards", forwards);
	writeString(stream, d, "camera_type", cameraTypeName());
	writeCloseTag(stream, depth, "camera");
}

ApertureImage* SceneNodeCamera::apertureImage() const
{
	if(aperture_shape.isNull() || aperture_shape->getType() != ApertureShape::Image)
		return nullptr;
	return static_cast<ApertureImage*>(aperture_shape.getPointer());
}

void SceneNodeCamera::appendDependencies(VisitOperation& op) const
{
	if(!obstacle_map_path.empty())
		op.dependency_paths.push_back(obstacle_map_path);
	if(const ApertureImage* image = apertureImage())
		op.dependency_paths.push_back(image->path);
}

void SceneNodeCamera::updatePaths(const VisitOperation& op)
{
	if(!obstacle_map_path.empty())
		obstacle_map_path = op.mappedPath(obstacle_map_path);
	if(ApertureImage* image = apertureImage())
		image->path = op.mappedPath(image->path);
}

void SceneNodeCamera::growBounds(VisitOperation& op) const
{
	const double r = aperture_radius;
	growBoundsByMovingBox(op, Vec3d(-r, -r, -r), Vec3d(r, r, r), Matrix3d(), keyframes);
}

void SceneNodeCamera::doVisit(VisitOperation& op)
{
	switch(op.type)
	{
	case VisitOperation::GetDependencies:
		appendDependencies(op);
		break;
	case VisitOperation::UpdatePaths:
		updatePaths(op);
		break;
	case VisitOperation::GetBounds:
		growBounds(op);
		break;
	case VisitOperation::OffsetUIDs:
		uid = uid + op.uid_offset;
		break;
	default:
		break;
	}
}

bool SceneNodeCamera::doIsEqual(const SceneNode& other) const
{
	if(!baseFieldsEqual(other) || other.getType() != getType())
		return false;
	const SceneNodeCamera& o = static_cast<const SceneNodeCamera&>(other);
	return aperture_radius == o.aperture_radius && focus_distance == o.focus_distance && sensor_width == o.sensor_width &&
		   lens_sensor_dist == o.lens_sensor_dist && exposure_duration == o.exposure_duration &&
		   lens_shift_up_distance == o.lens_shift_up_distance && lens_shift_right_distance == o.lens_shift_right_distance &&
		   autofocus == o.autofocus && obstacle_map_path == o.obstacle_map_path && up == o.up && forwards == o.forwards;
}

} // namespace Velorn
