#include "c4d/keyframe_track.h"

#include <algorithm>

bool KeyframeTrack::AppendKey(const BaseTime& time, const Vector& value)
{
	if(!keys.empty() && !(keys.back().time < time))
		return false;
	keys.push_back({time, value});
	return true;
}

Vector KeyframeTrack::GetValue(const BaseTime& time) const
{
	if(keys.empty())
		return Vector();
	// The first key later than time; the value lies between it and the one before.
	const auto next = std::upper_bound(keys.begin(), keys.end(), time,
		[](const BaseTime& t, const Keyframe& key) { return t < key.time; });
	if(next == keys.begin())
		return keys.front().value;
	if(next == keys.end())
		return keys.back().value;
	const Keyframe& before = *(next - 1);
	const double t0 = before.time.Get();
	const double f = (time.Get() - t0) / (next->time.Get() - t0);
	return before.value + (next->value - before.value) * f;
}

Matrix ObjectTracks::Evaluate(const Matrix& ml, const BaseTime& time) const
{
	Matrix m = ml;
	if(!position.IsEmpty())
		m.off = position.GetValue(time);
	if(rotation.IsEmpty() && scale.IsEmpty())
		return m;
	const Vector size = scale.IsEmpty() ? Vector(ml.v1.GetLength(), ml.v2.GetLength(), ml.v3.GetLength())
		: scale.GetValue(time);
	const Matrix turn = rotation.IsEmpty()
		? Matrix(Vector(), ml.v1.GetNormalized(), ml.v2.GetNormalized(), ml.v3.GetNormalized())
		: HPBToMatrix(rotation.GetValue(time));
	m.v1 = turn.v1 * size.x;
	m.v2 = turn.v2 * size.y;
	m.v3 = turn.v3 * size.z;
	return m;
}
