#pragma once

#include "support/reference.h"

#include <string>

namespace Velorn
{

// A reconstruction filter for downsampling, given in units of output
// pixels: eval(x) of a distance x >= 0 from the pixel's centre, 0 beyond
// the support radius.
class FilterFunction : public RefCounted
{
public:
	virtual double getSupportRadius() const = 0;
	virtual double eval(double x) const = 0;
	virtual std::string description() const = 0;
};

// 1 inside half a pixel, 0 from there on.
class BoxFilterFunction : public FilterFunction
{
public:
	double getSupportRadius() const override { return 0.5; }
	double eval(double x) const override { return 0.5 > x ? 1.0 : 0.0; }
	std::string description() const override { return "box"; }
};

} // namespace Velorn
