#pragma once

#include "scene/math_types.h"
#include "support/reference.h"
#include "support/velorn_string.h"

#include <cstdint>

namespace Velorn
{

// One value of the render settings dictionary. The dictionary is loosely
// typed: a key holds whichever kind was set last, and a read names the kind
// it expects.
class BaseSetting : public RefCounted
{
public:
	enum Type
	{
		Int = 0,
		Bool = 1,
		Double = 2
	};

	explicit BaseSetting(Type type_) : type(type_) {}

	virtual Reference<BaseSetting> clone() const = 0;
	// The text of the value as it stands between the key's tags.
	virtual String toString() const = 0;

	Type type;
};

// The text of a value between its key's tags: decimal, "true" or "false",
// and the shortest scene number form.
String settingText(int32_t value);
String settingText(bool value);
String settingText(double value);

// A setting that holds one value of type T.
template <class T, BaseSetting::Type TYPE>
class ValueSetting : public BaseSetting
{
public:
	static const Type kind = TYPE;

	explicit ValueSetting(T value_) : BaseSetting(TYPE), value(value_) {}

	Reference<BaseSetting> clone() const override { return Reference<BaseSetting>(new ValueSetting(value)); }
	String toString() const override { return settingText(value); }

	T value;
};

typedef ValueSetting<int32_t, BaseSetting::Int> IntSetting;
typedef ValueSetting<bool, BaseSetting::Bool> BoolSetting;
typedef ValueSetting<double, BaseSetting::Double> DoubleSetting;

// CIE 1931 chromaticity of the white of the image. It has no virtual copy;
// clone is a plain copy for the settings node's own use.
class WhitePoint : public RefCounted
{
public:
	WhitePoint(double x_, double y_) : x(x_), y(y_) {}

	Reference<WhitePoint> clone() const { return Reference<WhitePoint>(new WhitePoint(x, y)); }

	double x;
	double y;
};

// The part of the image to render, in pixels.
class RenderRegion : public RefCounted
{
public:
	RenderRegion(int32_t x1_, int32_t x2_, int32_t y1_, int32_t y2_) : x1(x1_), x2(x2_), y1(y1_), y2(y2_) {}

	virtual Reference<RenderRegion> clone() const;

	int32_t x1;
	int32_t x2;
	int32_t y1;
	int32_t y2;
};

// The name, colour and gain of one light layer.
class LayerSetting : public RefCounted
{
public:
	LayerSetting(const String& name_, const Vec3d& xyz_, double gain_) : name(name_), xyz(xyz_), gain(gain_) {}

	// The layer that stands in for one nobody named: "Layer " and the index,
	// white, gain 1.
	static Reference<LayerSetting> makeDefault(size_t index);
	// A white layer of gain 1 with the given name.
	static Reference<LayerSetting> makeNamed(const String& name);

	virtual Reference<LayerSetting> clone() const;

	String name;
	Vec3d xyz;
	double gain;
};

// The GPU a render should use.
class GPUDeviceSettings : public RefCounted
{
public:
	enum Subsystem
	{
		CUDA = 1,
		OpenCL = 2
	};

	GPUDeviceSettings(const String& device_name_, int subsystem_) : device_name(device_name_), subsystem(subsystem_) {}

	virtual Reference<GPUDeviceSettings> clone() const;
	// "CUDA", "OpenCL", or empty for any other subsystem number.
	String subsystemName() const;

	String device_name;
	int subsystem;
};

} // namespace Velorn
