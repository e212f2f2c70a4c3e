#pragma once

#include "scene/channel_params.h"
#include "scene/math_types.h"
#include "scene/ostream.h"
#include "scene/wavelength_values.h"
#include "scene/write_context.h"
#include "support/reference.h"
#include "support/velorn_string.h"

#include <cstdint>

namespace Velorn
{

// How light scatters at a point in a medium.
class PhaseFunction : public RefCounted
{
public:
	virtual ~PhaseFunction();
	virtual void writeXML(OStream& stream, unsigned depth) const = 0;
	virtual unsigned getType() const = 0;
};

// The same in every direction.
class UniformPhaseFunction : public PhaseFunction
{
public:
	void writeXML(OStream& stream, unsigned depth) const override;
	unsigned getType() const override { return 0; }
};

// Forward or backward scattering by the asymmetry g over wavelength.
class HenyeyGreensteinPhaseFunction : public PhaseFunction
{
public:
	HenyeyGreensteinPhaseFunction() = default;
	explicit HenyeyGreensteinPhaseFunction(const Reference<Spectrum>& g_spectrum_) : g_spectrum(g_spectrum_) {}

	void writeXML(OStream& stream, unsigned depth) const override;
	unsigned getType() const override { return 1; }

	Reference<Spectrum> g_spectrum;
};

// Scattering inside a medium. It writes its fields only; the element around
// them is the medium's.
class SubsurfaceScattering : public RefCounted
{
public:
	virtual ~SubsurfaceScattering();
	virtual void writeXML(OStream& stream, unsigned depth, WriteContext& context) const;

	Reference<VolumeParam> scattering_coefficient;
	Reference<PhaseFunction> phase_function;
};

// What fills the inside of a closed surface. Where two media overlap, the
// one of higher precedence holds.
class Medium : public RefCounted
{
public:
	virtual ~Medium();
	virtual void writeXML(OStream& stream, unsigned depth, WriteContext& context) const = 0;
	virtual unsigned getType() const = 0;

	String name;
	int32_t precedence = 10;
};

// Refraction, absorption and optional scattering.
class BasicMedium : public Medium
{
public:
	// Absorbs nothing: a constant volume parameter of a uniform spectrum 0.
	BasicMedium();

	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	unsigned getType() const override { return 0; }

	double ior = 1.5;
	double cauchy_b_coeff = 0;
	double step_size = 0.1;
	Reference<VolumeParam> absorption_coefficient;
	Reference<SubsurfaceScattering> subsurface_scattering;
};

// The inner layer of skin. Its maker sets the fraction.
class Dermis : public Medium
{
public:
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	unsigned getType() const override { return 1; }

	double hemoglobin_fraction = 0;
};

// The outer layer of skin. Its maker sets the fractions.
class Epidermis : public Medium
{
public:
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	unsigned getType() const override { return 2; }

	double melanin_fraction = 0;
	double melanin_type_blend = 0;
};

// A planet's air around center.
class Atmosphere : public Medium
{
public:
	void writeXML(OStream& stream, unsigned depth, WriteContext& context) const override;
	unsigned getType() const override { return 3; }

	Vec3d center;
	double turbidity = 0;
};

} // namespace Velorn
