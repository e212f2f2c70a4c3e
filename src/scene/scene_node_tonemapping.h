#pragma once

#include "scene/scene_node.h"

#include <cstdint>

namespace Velorn
{

// How the renderer turns light into pixel values. One node holds the
// parameters of all three kinds; tone_mapping_type says which is in force,
// and only that kind is written.
class SceneNodeTonemapping : public SceneNode
{
public:
	enum Kind : int32_t
	{
		Linear = 1000,
		Reinhard = 1001,
		CameraResponse = 1002
	};

	// Linear tone mapping by a scale.
	explicit SceneNodeTonemapping(double linear_scale_ = 1);
	// Reinhard's operator.
	SceneNodeTonemapping(double pre_scale_, double post_scale_, double burn_);
	// The response curve of a film or sensor, read from a file.
	SceneNodeTonemapping(const String& response_function_path_, double ev_adjust_, double film_iso_);

	unsigned getType() const override { return SceneNodeType::Tonemapping; }
	Reference<SceneNode> clone() const override;
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	void doVisit(VisitOperation& op) override;
	// Compares the kind and the values of the kind in force.
	bool doIsEqual(const SceneNode& other) const override;

	double linear_scale = 1;
	double pre_scale = 4;
	double post_scale = 1;
	double burn = 6;
	String response_function_path = "data/camera_response_functions/dscs315.txt";
	double film_iso = 200;
	double ev_adjust = 0;
	int32_t tone_mapping_type = Linear;

private:
	void writeKind(OStream& stream, unsigned depth) const;
	bool kindValuesEqual(const SceneNodeTonemapping& o) const;
};

} // namespace Velorn
