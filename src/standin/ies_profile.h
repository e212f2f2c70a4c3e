#pragma once

#include "standin/tracer_math.h"

#include <string>
#include <vector>

namespace Velorn
{
namespace Standin
{

// The light distribution of a luminaire as an IES LM-63 file gives it
// (photometric type C): candela values over vertical angles, measured from
// the downward axis (0 is straight down, 180 straight up), and horizontal
// angles around that axis.
class IesProfile
{
public:
	// Reads a profile file. Throws Exception naming the file and the line
	// for anything that is not a profile this renderer can use: a missing
	// TILT line, a file cut short, counts or angles that cannot be, a word
	// where a number belongs, a photometric type other than C.
	static IesProfile load(const std::string& path);
	// The same from the file's text; name stands for the file in messages.
	static IesProfile parse(const std::string& text, const std::string& name);

	// Candela (times the file's multiplier) towards the vertical angle theta
	// and the horizontal angle phi, both in degrees: linear between the
	// tabulated angles in both directions. Horizontal angles fold by the
	// symmetry the table's last angle states (one angle: the same all
	// round; 90: four quadrants alike; 180: two halves alike); vertical
	// angles outside the table give 0.
	float candela(float theta, float phi) const;
	// The largest tabulated value, the one at which shape() is 1.
	float maxCandela() const { return max_candela; }

	std::vector<float> vertical;    // degrees, ascending
	std::vector<float> horizontal;  // degrees, ascending
	// One row per horizontal angle, each with one value per vertical angle.
	std::vector<float> values;

private:
	float alongVertical(size_t row, float theta) const;

	float max_candela = 0;
};

// A profile placed on a model: the model's local -z axis (carried by its
// placement) is the profile's vertical angle 0, and its local +x is the
// horizontal angle 0, turning towards local +y.
struct IesEmitter
{
	const IesProfile* profile = nullptr;
	V3 down, zero, quarter;

	// The profile's candela towards the unit direction dir (pointing away
	// from the lamp) over its largest value: 1 in the brightest direction.
	float shape(const V3& dir) const;

	// The factor on the lamp material's radiance leaving its surface
	// towards dir, where cos_surface is the cosine between dir and the
	// surface's normal: shape(dir) over |cos_surface|. So every bit of the
	// lamp's surface sends intensity in proportion to its area and the
	// profile, whichever way it faces, and a flat lamp seen from the side
	// is as bright as from the front. The cosine is held off zero, which
	// keeps a surface seen edge on from turning into single blinding
	// samples.
	float radianceScale(const V3& dir, float cos_surface) const;
};

} // namespace Standin
} // namespace Velorn
