// The processor's features and names, read with the CPUID instruction
// through the compiler's intrinsic, the same on every system.
#include "support/exceptions.h"
#include "support/platform_utils.h"

#include <cpuid.h>

#include <cstdint>
#include <cstring>

namespace Velorn
{
namespace PlatformUtils
{

namespace
{

void cpuid(uint32_t leaf, uint32_t regs[4]) { __cpuid(leaf, regs[0], regs[1], regs[2], regs[3]); }

} // namespace

void getCPUInfo(CPUInfo& out)
{
	uint32_t regs[4]; // EAX, EBX, ECX, EDX
	cpuid(0, regs);
	if(regs[0] < 1)
		throw PlatformUtilsExcep("CPUID highest_param error.");
	std::memcpy(out.vendor, &regs[1], 4);
	std::memcpy(out.vendor + 4, &regs[3], 4);
	std::memcpy(out.vendor + 8, &regs[2], 4);

	cpuid(1, regs);
	out.htt = false;
	out.mmx = (regs[3] >> 23) & 1;
	out.sse1 = (regs[3] >> 25) & 1;
	out.sse2 = (regs[3] >> 26) & 1;
	out.sse3 = regs[2] & 1;
	out.sse4_1 = (regs[2] >> 19) & 1;
	out.sse4_2 = (regs[2] >> 20) & 1;
	out.stepping = regs[0] & 0xF;
	out.model = (regs[0] >> 4) & 0xF;
	out.family = (regs[0] >> 8) & 0xF;

	cpuid(0x80000000u, regs);
	if(regs[0] < 0x80000004u)
		throw PlatformUtilsExcep("CPUID highest_extended_param error.");
	for(uint32_t i = 0; i < 3; ++i)
	{
		cpuid(0x80000002u + i, regs);
		std::memcpy(out.proc_brand + 16 * i, regs, 16);
	}
}

} // namespace PlatformUtils
} // namespace Velorn
