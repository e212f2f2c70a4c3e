#pragma once

#include "scene/ostream.h"
#include "support/reference.h"

namespace Velorn
{

// What both filter families offer. Family is the family's own class, the
// type that clone returns. A filter writes its whole element: the family's
// element around the body of its kind.
template <class Family>
class RenderFilter : public RefCounted
{
public:
	virtual unsigned getType() const = 0;
	virtual void writeXML(OStream& stream, unsigned depth) const = 0;
	virtual Reference<Family> clone() const = 0;
};

// How a sample is spread over the pixels of the full size image.
class SplatFilter : public RenderFilter<SplatFilter>
{
public:
	static constexpr const char* element = "splat_filter";
};

// How the full size image is filtered down to the output size.
class DownsizeFilter : public RenderFilter<DownsizeFilter>
{
public:
	static constexpr const char* element = "downsize_filter";
};

namespace FilterXML
{

// tabs <element>, the empty body element one level in, tabs </element>.
void writePlain(OStream& stream, unsigned depth, const char* element, const char* body);
// Opens element and mn_cubic and writes blur before ring: files have always
// held them in that order, whatever order the fields are declared in.
void openMNCubic(OStream& stream, unsigned depth, const char* element, double blur, double ring);
void closeMNCubic(OStream& stream, unsigned depth, const char* element);

inline constexpr char fastbox[] = "fastbox";
inline constexpr char radial[] = "radial";
inline constexpr char box[] = "box";
inline constexpr char gaussian[] = "gaussian";
inline constexpr char sharp[] = "sharp";

} // namespace FilterXML

// A filter of a kind that has no parameters: its body is one empty element.
// Base is SplatFilter or DownsizeFilter.
template <class Base, unsigned TYPE, const char* BODY>
class PlainFilter : public Base
{
public:
	unsigned getType() const override { return TYPE; }
	void writeXML(OStream& stream, unsigned depth) const override { FilterXML::writePlain(stream, depth, Base::element, BODY); }
	Reference<Base> clone() const override { return Reference<Base>(new PlainFilter()); }
};

typedef PlainFilter<SplatFilter, 0, FilterXML::fastbox> SplatFilterFastBox;
typedef PlainFilter<SplatFilter, 1, FilterXML::radial> SplatFilterRadial;
typedef PlainFilter<SplatFilter, 3, FilterXML::box> SplatFilterBox;
typedef PlainFilter<DownsizeFilter, 0, FilterXML::gaussian> DownsizeFilterGaussian;
typedef PlainFilter<DownsizeFilter, 2, FilterXML::sharp> DownsizeFilterSharp;

// The Mitchell-Netravali cubic as a splat filter.
class SplatFilterMNCubic : public SplatFilter
{
public:
	SplatFilterMNCubic(double ring_, double blur_) : ring(ring_), blur(blur_) {}

	unsigned getType() const override { return 2; }
	void writeXML(OStream& stream, unsigned depth) const override;
	Reference<SplatFilter> clone() const override;

	double ring;
	double blur;
};

// The Mitchell-Netravali cubic as a downsize filter, with its radius in
// pixels of the output image.
class DownsizeFilterMNCubic : public DownsizeFilter
{
public:
	DownsizeFilterMNCubic(double ring_, double blur_, double radius_) : ring(ring_), blur(blur_), radius(radius_) {}

	unsigned getType() const override { return 1; }
	void writeXML(OStream& stream, unsigned depth) const override;
	Reference<DownsizeFilter> clone() const override;

	double ring;
	double blur;
	double radius;
};

} // namespace Velorn
