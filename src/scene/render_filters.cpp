#include "scene/render_filters.h"

#include "scene/xml_write.h"

namespace Velorn
{
namespace FilterXML
{

void writePlain(OStream& stream, unsigned depth, const char* element, const char* body)
{
	XMLWrite::writeOpenTag(stream, depth, element);
	XMLWrite::writeEmptyTag(stream, depth + 1, body);
	XMLWrite::writeCloseTag(stream, depth, element);
}

void openMNCubic(OStream& stream, unsigned depth, const char* element, double blur, double ring)
{
	XMLWrite::writeOpenTag(stream, depth, element);
	XMLWrite::writeOpenTag(stream, depth + 1, "mn_cubic");
	XMLWrite::writeDouble(stream, depth + 2, "blur", blur);
	XMLWrite::writeDouble(stream, depth + 2, "ring", ring);
}

void closeMNCubic(OStream& stream, unsigned depth, const char* element)
{
	XMLWrite::writeCloseTag(stream, depth + 1, "mn_cubic");
	XMLWrite::writeCloseTag(stream, depth, element);
}

} // namespace FilterXML

void SplatFilterMNCubic::writeXML(OStream& stream, unsigned depth) const
{
	FilterXML::openMNCubic(stream, depth, element, blur, ring);
	FilterXML::closeMNCubic(stream, depth, element);
}

Reference<SplatFilter> SplatFilterMNCubic::clone() const { return Reference<SplatFilter>(new SplatFilterMNCubic(ring, blur)); }

void DownsizeFilterMNCubic::writeXML(OStream& stream, unsigned depth) const
{
	FilterXML::openMNCubic(stream, depth, element, blur, ring);
	XMLWrite::writeDouble(stream, depth + 2, "radius", radius);
	FilterXML::closeMNCubic(stream, depth, element);
}

Reference<DownsizeFilter> DownsizeFilterMNCubic::clone() const
{
	return Reference<DownsizeFilter>(new DownsizeFilterMNCubic(ring, blur, radius));
}

} // namespace Velorn
