#include "scene/wavelength_values.h"

#include "scene/xml_write.h"

namespace Velorn
{

using namespace XMLWrite;

Spectrum::~Spectrum() = default;

void BlackBodySpectrum::writeXML(OStream& stream, unsigned depth) const
{
	writeOpenTag(stream, depth, "blackbody");
	writeDouble(stream, depth + 1, "temperature", temperature);
	writeDouble(stream, depth + 1, "gain", gain);
	writeCloseTag(stream, depth, "blackbody");
}

void PeakSpectrum::writeXML(OStream& stream, unsigned depth) const
{
	writeOpenTag(stream, depth, "peak");
	writeDouble(stream, depth + 1, "peak_min", peak_min);
	writeDouble(stream, depth + 1, "peak_width", peak_width);
	writeDouble(stream, depth + 1, "peak_value", peak_value);
	writeDouble(stream, depth + 1, "base_value", base_value);
	writeCloseTag(stream, depth, "peak");
}

void RGBSpectrum::writeXML(OStream& stream, unsigned depth) const
{
	writeOpenTag(stream, depth, "rgb");
	writeVec3(stream, depth + 1, "rgb", rgb);
	writeDouble(stream, depth + 1, "gamma", gamma);
	writeCloseTag(stream, depth, "rgb");
}

void RegularSpectrum::writeXML(OStream& stream, unsigned depth) const
{
	writeOpenTag(stream, depth, "regular_tabulated");
	writeDouble(stream, depth + 1, "start_wavelength", start_wavelength);
	writeDouble(stream, depth + 1, "end_wavelength", end_wavelength);
	writeInt(stream, depth + 1, "num_values", num_values);
	writeTabs(stream, depth + 1);
	stream.write("<values>");
	writeNumberList(stream, values.data(), values.size());
	stream.write("</values>\n");
	writeCloseTag(stream, depth, "regular_tabulated");
}

void UniformSpectrum::writeXML(OStream& stream, unsigned depth) const
{
	writeOpenTag(stream, depth, "uniform");
	writeDouble(stream, depth + 1, "value", value);
	writeCloseTag(stream, depth, "uniform");
}

void TabulatedSpectralData::writeXML(OStream& stream, unsigned depth) const
{
	writeDouble(stream, depth + 1, "start_wavelength", start_wavelength);
	writeDouble(stream, depth + 1, "end_wavelength", end_wavelength);
	writeInt(stream, depth + 1, "num_rows", num_rows);
	writeInt(stream, depth + 1, "num_columns", num_columns);
	writeOpenTag(stream, depth + 1, "values");
	// The values stand without indentation, one row of the table a line.
	for(size_t i = 0; i < values.size(); ++i)
	{
		const bool ends_row = num_columns > 0 && (i + 1) % (size_t)num_columns == 0;
		stream.write(numberText(values[i]) + (ends_row ? "\n" : " "));
	}
	writeCloseTag(stream, depth + 1, "values");
}

} // namespace Velorn
