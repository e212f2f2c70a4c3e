#include "scene/render_setting_values.h"

#include "support/string_utils.h"

namespace Velorn
{

String settingText(int32_t value) { return String(toString(value)); }

String settingText(bool value) { return value ? "true" : "false"; }

String settingText(double value) { return String(sceneNumberText(value)); }

Reference<RenderRegion> RenderRegion::clone() const { return Reference<RenderRegion>(new RenderRegion(*this)); }

Reference<LayerSetting> LayerSetting::makeDefault(size_t index)
{
	return makeNamed(String("Layer ") + String(Velorn::toString((uint64_t)index)));
}

Reference<LayerSetting> LayerSetting::makeNamed(const String& name)
{
	return Reference<LayerSetting>(new LayerSetting(name, Vec3d(1, 1, 1), 1));
}

Reference<LayerSetting> LayerSetting::clone() const { return Reference<LayerSetting>(new LayerSetting(*this)); }

Reference<GPUDeviceSettings> GPUDeviceSettings::clone() const
{
	return Reference<GPUDeviceSettings>(new GPUDeviceSettings(*this));
}

String GPUDeviceSettings::subsystemName() const
{
	switch(subsystem)
	{
	case CUDA:
		return "CUDA";
	case OpenCL:
		return "OpenCL";
	default:
		return "";
	}
}

} // namespace Velorn
