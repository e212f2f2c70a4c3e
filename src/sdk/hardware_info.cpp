#include "sdk/hardware_info.h"

namespace Velorn
{

HardwareInfo::HardwareInfo(const Reference<VelornContext>& context)
{
	context->create_instance(String("HardwareInfoDLLAPI"), object);
}

HardwareInfo::~HardwareInfo() = default;

void HardwareInfo::getGPUInfo(Reference<InterfaceBase>& out)
{
	object->entry<HardwareInfoTable::GPUListFn>(HardwareInfoTable::GetGPUList)(object.getPointer(), &out);
}

} // namespace Velorn
