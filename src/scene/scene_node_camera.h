#pragma once

#include "scene/aperture_shape.h"
#include "scene/keyframe.h"
#include "scene/math_types.h"
#include "scene/scene_node.h"

namespace Velorn
{

// The camera of a scene: a thin lens (or an orthographic or spherical
// projection), its aperture, exposure and placement over time.
class SceneNodeCamera : public SceneNode
{
public:
	enum CameraType : int
	{
		ThinLensPerspective = 0,
		Orthographic = 1,
		Spherical = 2
	};

	SceneNodeCamera();

	unsigned getType() const override { return SceneNodeType::Camera; }
	Reference<SceneNode> clone() const override;
	// The aperture shape is written unchecked: a camera without one is a
	// programming fault.
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	void doVisit(VisitOperation& op) override;
	// Compares the lens, exposure, autofocus, obstacle map and directions;
	// the aperture, the keyframes and the camera type take no part.
	bool doIsEqual(const SceneNode& other) const override;

	double aperture_radius = 0.001;
	double focus_distance = 20;
	double sensor_width = 0.036;
	double lens_sensor_dist = 0.036;
	double exposure_duration = 0.333;
	double lens_shift_up_distance = 0;
	double lens_shift_right_distance = 0;
	bool autofocus = false;
	String obstacle_map_path;
	Reference<ApertureShape> aperture_shape;
	Vector<KeyFrame> keyframes;
	Vec3d up = Vec3d(0, 0, 1);
	Vec3d forwards = Vec3d(0, 1, 0);
	CameraType camera_type = ThinLensPerspective;

private:
	// The image of an image aperture, or null for the other shapes.
	ApertureImage* apertureImage() const;
	void appendDependencies(VisitOperation& op) const;
	void updatePaths(const VisitOperation& op);
	// A cube of side 2 * aperture_radius about the camera, carried along
	// the keyframes as a model's box is (at the origin without keyframes).
	void growBounds(VisitOperation& op) const;
	void writeObstacleMap(OStream& stream, unsigned depth, const WriteContext& context) const;
	// "thin-lens-perspective", "orthographic", "spherical", or empty for a
	// number that names no projection.
	const char* cameraTypeName() const;
};

} // namespace Velorn
