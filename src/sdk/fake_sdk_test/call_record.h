#pragma once

#include <string>
#include <vector>

// What the fake renderer libraries were asked to do, in order. It lives in
// a shared library of its own that the test and every fake link, so that a
// fake loaded at run time writes into the record the test reads.
namespace FakeSdk
{

void record(const std::string& call);
std::vector<std::string> calls();
void clearCalls();

} // namespace FakeSdk
