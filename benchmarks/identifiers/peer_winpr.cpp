// benchmarks/identifiers/peer_winpr.cpp: WinPR's rows. Its macros bear names of ours: no header of
// the library may stand beside its own.
#include <benchmark/benchmark.h>
#include <winpr/rpc.h>

namespace {

void guid(benchmark::State& state) {
  UUID made;
  for (auto _ : state) {
    UuidCreate(&made);
    benchmark::DoNotOptimize(made);
  }
}
BENCHMARK(guid)->Name("guid/create/WinPR");

void guid_text(benchmark::State& state) {
  UUID made;
  for (auto _ : state) {
    RPC_CSTR text = nullptr;
    UuidCreate(&made);
    UuidToStringA(&made, &text);
    benchmark::DoNotOptimize(text);
    RpcStringFreeA(&text);
  }
}
BENCHMARK(guid_text)->Name("guid/create_text/WinPR");

}  // namespace
