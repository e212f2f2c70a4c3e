#include "call_record.h"

namespace FakeSdk
{

namespace
{

std::vector<std::string>& log()
{
	static std::vector<std::string> entries;
	return entries;
}

} // namespace

void record(const std::string& call)
{
	log().push_back(call);
}

std::vector<std::string> calls()
{
	return log();
}

void clearCalls()
{
	log().clear();
}

} // namespace FakeSdk
