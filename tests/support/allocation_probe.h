#pragma once

#include <cstddef>

// The largest single allocation through operator new since the last reset,
// so that a test can tell that code did not reserve far more than its input
// could fill. A test binary that calls these gets the counting operator new
// in place of the standard one.
namespace VelornTest
{

void resetLargestAllocation();
size_t largestAllocation();

} // namespace VelornTest
