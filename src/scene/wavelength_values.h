#pragma once

#include "scene/math_types.h"
#include "scene/ostream.h"
#include "scene/value_helpers.h"
#include "support/reference.h"
#include "support/velorn_vector.h"

#include <cstdint>

namespace Velorn
{

// A value over the wavelengths of light. Every number is a double; the
// element of each class holds its fields one level in.
class Spectrum : public RefCounted
{
public:
	virtual ~Spectrum();
	virtual void writeXML(OStream& stream, unsigned depth) const = 0;
	virtual unsigned getType() const = 0;
	virtual Reference<Spectrum> clone() const = 0;
};

// The light of a black body at temperature (kelvin), scaled by gain.
class BlackBodySpectrum : public CopyCloned<BlackBodySpectrum, Spectrum>
{
public:
	BlackBodySpectrum() = default;
	BlackBodySpectrum(double temperature_, double gain_) : temperature(temperature_), gain(gain_) {}

	void writeXML(OStream& stream, unsigned depth) const override;
	unsigned getType() const override { return 0; }

	double temperature = 0;
	double gain = 0;
};

// base_value everywhere, peak_value from peak_min over peak_width.
class PeakSpectrum : public CopyCloned<PeakSpectrum, Spectrum>
{
public:
	void writeXML(OStream& stream, unsigned depth) const override;
	unsigned getType() const override { return 1; }

	double peak_min = 0;
	double peak_width = 0;
	double peak_value = 0;
	double base_value = 0;
};

// A colour taken up into the spectral domain, its components raised to gamma.
class RGBSpectrum : public CopyCloned<RGBSpectrum, Spectrum>
{
public:
	RGBSpectrum() = default;
	RGBSpectrum(const Vec3d& rgb_, double gamma_) : rgb(rgb_), gamma(gamma_) {}

	void writeXML(OStream& stream, unsigned depth) const override;
	unsigned getType() const override { return 2; }

	Vec3d rgb;
	double gamma = 0;
};

// num_values samples at regular steps from start_wavelength to end_wavelength.
class RegularSpectrum : public CopyCloned<RegularSpectrum, Spectrum>
{
public:
	void writeXML(OStream& stream, unsigned depth) const override;
	unsigned getType() const override { return 3; }

	double start_wavelength = 0;
	double end_wavelength = 0;
	int32_t num_values = 0;
	Vector<double> values;
};

// The same value at every wavelength.
class UniformSpectrum : public CopyCloned<UniformSpectrum, Spectrum>
{
public:
	UniformSpectrum() = default;
	explicit UniformSpectrum(double value_) : value(value_) {}

	void writeXML(OStream& stream, unsigned depth) const override;
	unsigned getType() const override { return 4; }

	double value = 0;
};

// A table over wavelength and one more dimension, rows one after the other.
// It writes its fields only; the element around them is the caller's.
class TabulatedSpectralData : public RefCounted
{
public:
	void writeXML(OStream& stream, unsigned depth) const;

	double start_wavelength = 0;
	double end_wavelength = 0;
	int32_t num_rows = 0;
	int32_t num_columns = 0;
	Vector<double> values;
};

} // namespace Velorn
