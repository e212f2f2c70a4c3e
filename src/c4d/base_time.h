#pragma once

#include <cstdint>

// A point in time as a fraction of seconds, numerator over denominator, so
// that frame f at a rate of fps frames per second is exactly f / fps.
class BaseTime
{
public:
	BaseTime() = default;
	// numerator / denominator seconds; with a frame and a frame rate, the
	// time of that frame. The denominator must be positive.
	BaseTime(double numerator, double denominator);
	explicit BaseTime(double seconds) : BaseTime(seconds, 1) {}

	double Get() const { return numerator / denominator; }
	double GetNumerator() const { return numerator; }
	double GetDenominator() const { return denominator; }
	// The frame at rate fps that this time lies in: floor(numerator * fps / denominator).
	int32_t GetFrame(double fps) const;

	// Fractions compare by value: 1/25 equals 2/50.
	bool operator==(const BaseTime& o) const;
	bool operator!=(const BaseTime& o) const { return !(*this == o); }
	bool operator<(const BaseTime& o) const;

private:
	double numerator = 0;
	double denominator = 1;
};
