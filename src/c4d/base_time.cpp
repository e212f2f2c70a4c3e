#include "c4d/base_time.h"

#include <cmath>

BaseTime::BaseTime(double numerator_, double denominator_)
	: numerator(numerator_), denominator(denominator_)
{
}

int32_t BaseTime::GetFrame(double fps) const
{
	return (int32_t)std::floor(numerator * fps / denominator);
}

bool BaseTime::operator==(const BaseTime& o) const
{
	return numerator * o.denominator == o.numerator * denominator;
}

bool BaseTime::operator<(const BaseTime& o) const
{
	return numerator * o.denominator < o.numerator * denominator;
}
