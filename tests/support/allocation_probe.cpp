#include "support/allocation_probe.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{
std::atomic<size_t> largest{0};
}

void* operator new(std::size_t size)
{
	size_t seen = largest.load();
	while(size > seen && !largest.compare_exchange_weak(seen, size))
	{
	}
	if(void* p = std::malloc(size ? size : 1))
		return p;
	throw std::bad_alloc();
}

void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace VelornTest
{

void resetLargestAllocation() { largest = 0; }
size_t largestAllocation() { return largest; }

} // namespace VelornTest
