// benchmarks/identifiers/peer_libuuid.cpp: libuuid's rows, time-based GUIDs as ours.
#include <benchmark/benchmark.h>
#include <uuid/uuid.h>

namespace {

void guid(benchmark::State& state) {
  uuid_t made;
  for (auto _ : state) {
    uuid_generate_time(made);
    benchmark::DoNotOptimize(made);
  }
}
BENCHMARK(guid)->Name("guid/create/libuuid");

void guid_text(benchmark::State& state) {
  uuid_t made;
  char text[37];
  for (auto _ : state) {
    uuid_generate_time(made);
    uuid_unparse_upper(made, text);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(guid_text)->Name("guid/create_text/libuuid");

}  // namespace
