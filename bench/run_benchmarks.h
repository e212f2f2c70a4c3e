#pragma once

#include <benchmark/benchmark.h>

// What the benchmark library's own main does: read its flags, refuse any
// other, run the benchmarks the flags select. Returns the exit status, after
// which the caller removes the files its benchmarks wrote.
inline int runBenchmarks(int argc, char** argv)
{
	benchmark::Initialize(&argc, argv);
	if(benchmark::ReportUnrecognizedArguments(argc, argv))
		return 1;
	benchmark::RunSpecifiedBenchmarks();
	benchmark::Shutdown();
	return 0;
}
