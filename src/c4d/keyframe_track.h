#pragma once

#include "c4d/base_time.h"
#include "c4d/vector_matrix.h"

#include <vector>

// One key of a track: the value its channel has at the time.
struct Keyframe
{
	BaseTime time;
	Vector value;
};

// The keys of one animated channel, in ascending time. Between two keys the
// value goes linearly from the one to the other; before the first key it is
// the first key's value, after the last the last's.
class KeyframeTrack
{
public:
	bool IsEmpty() const { return keys.empty(); }
	const std::vector<Keyframe>& GetKeys() const { return keys; }
	// Adds a key behind the last; false, changing nothing, unless its time
	// is later than the last key's.
	bool AppendKey(const BaseTime& time, const Vector& value);
	void Clear() { keys.clear(); }

	// The value at time; zero without keys.
	Vector GetValue(const BaseTime& time) const;

private:
	std::vector<Keyframe> keys;
};

// The keyframe tracks of an object: position, rotation as HPB angles in
// radians (HPBToMatrix), and scale, the lengths of the three axes.
struct ObjectTracks
{
	KeyframeTrack position;
	KeyframeTrack rotation;
	KeyframeTrack scale;

	bool IsEmpty() const { return position.IsEmpty() && rotation.IsEmpty() && scale.IsEmpty(); }
	// The local matrix at time: translation(position) * HPBToMatrix(rotation)
	// * scale. A channel without keys keeps what ml has: its offset, the
	// directions of its axes, their lengths. Without rotation and scale keys
	// the axes of ml stay as they are.
	Matrix Evaluate(const Matrix& ml, const BaseTime& time) const;
};
