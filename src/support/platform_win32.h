#pragma once

#include <cstdint>
#include <string>

// The helpers of the Windows platform layer that its tests look at. Built on
// Windows only; the declarations need no system header.
namespace Velorn
{
namespace Platform
{
namespace Win32
{

// UTF-8 to UTF-16 and back, as every path and text crosses to the wide
// calls of the system.
std::wstring widen(const std::string& text);
std::string narrow(const std::wstring& text);

// The creation flags that startProcess and runProcess give CreateProcessW.
uint32_t processCreationFlags(bool below_normal);

} // namespace Win32
} // namespace Platform
} // namespace Velorn
