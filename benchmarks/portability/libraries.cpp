// benchmarks/portability/libraries.cpp: loading and releasing a library that is already loaded.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include "benchmarks/portability/rows.h"
#include "portability/dynlib.h"

namespace {

using namespace orbbench;

void our_reload(benchmark::State& state) {
  goal(state, "goal_ratio_GModule", 2);
  goal(state, "goal_ratio_dlopen", 0.4);
  void* first = voxLoadLibrary(ORB_BENCHMARK_PLUGIN, nullptr);
  if (first == nullptr) state.SkipWithError("the library does not load");
  for (auto _ : state) {
    void* again = voxLoadLibrary(ORB_BENCHMARK_PLUGIN, nullptr);
    benchmark::DoNotOptimize(again);
    voxFreeLibrary(again);
  }
  voxFreeLibrary(first);
}
BENCHMARK(our_reload)->Name("library/reload_release/ours");

void dlopen_reload(benchmark::State& state) {
  void* first = dlopen(ORB_BENCHMARK_PLUGIN, RTLD_LAZY);
  if (first == nullptr) state.SkipWithError("the library does not load");
  for (auto _ : state) {
    void* again = dlopen(ORB_BENCHMARK_PLUGIN, RTLD_LAZY);
    benchmark::DoNotOptimize(again);
    dlclose(again);
  }
  dlclose(first);
}
BENCHMARK(dlopen_reload)->Name("library/reload_release/dlopen");

}  // namespace
