#pragma once

#include "sdk/interface_base.h"
#include "sdk/velorn_context.h"
#include "support/reference.h"

namespace Velorn
{

// The SDK library's view of the machine's hardware.
class HardwareInfo : public RefCounted
{
public:
	explicit HardwareInfo(const Reference<VelornContext>& context);
	~HardwareInfo() override;

	// The list of graphics devices, a GPUInfoList made by the library.
	void getGPUInfo(Reference<InterfaceBase>& out);

private:
	Reference<InterfaceBase> object;
};

} // namespace Velorn
