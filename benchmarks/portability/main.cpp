// benchmarks/portability/main.cpp: runs the benchmarks of the portability core.
//
// A name is operation/case/who; a peer whose package is missing has no rows.
#include <benchmark/benchmark.h>

#include "benchmarks/second_thread.h"

int main(int argc, char** argv) {
  const orbbench::SecondThread second;
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
