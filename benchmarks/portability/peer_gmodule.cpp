// benchmarks/portability/peer_gmodule.cpp: GLib's rows.
#include <benchmark/benchmark.h>
#include <gmodule.h>

namespace {

void reload(benchmark::State& state) {
  GModule* first = g_module_open(ORB_BENCHMARK_PLUGIN, G_MODULE_BIND_LAZY);
  if (first == nullptr) state.SkipWithError("the library does not load");
  for (auto _ : state) {
    GModule* again = g_module_open(ORB_BENCHMARK_PLUGIN, G_MODULE_BIND_LAZY);
    benchmark::DoNotOptimize(again);
    g_module_close(again);
  }
  g_module_close(first);
}
BENCHMARK(reload)->Name("library/reload_release/GModule");

}  // namespace
