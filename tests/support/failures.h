#pragma once

#include "support/exceptions.h"

#include <string>

namespace VelornTest
{

// The message of the Excep that f throws, or "(no failure)" when it throws
// nothing. By default any of the library's exceptions counts.
template <class Excep = Velorn::MessageException, class Function>
std::string failureOf(Function f)
{
	try
	{
		f();
	}
	catch(const Excep& e)
	{
		return e.what();
	}
	return "(no failure)";
}

} // namespace VelornTest
