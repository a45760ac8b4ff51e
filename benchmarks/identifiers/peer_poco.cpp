// benchmarks/identifiers/peer_poco.cpp: POCO's rows.
#include <Poco/DateTimeFormatter.h>
#include <Poco/LocalDateTime.h>
#include <Poco/UUID.h>
#include <Poco/UUIDGenerator.h>
#include <benchmark/benchmark.h>

namespace {

void guid(benchmark::State& state) {
  Poco::UUIDGenerator generator;
  for (auto _ : state) benchmark::DoNotOptimize(generator.create());
}
BENCHMARK(guid)->Name("guid/create/POCO");

void guid_text(benchmark::State& state) {
  Poco::UUIDGenerator generator;
  for (auto _ : state) benchmark::DoNotOptimize(generator.create().toString());
}
BENCHMARK(guid_text)->Name("guid/create_text/POCO");

void stamp(benchmark::State& state) {
  const std::string format = "%Y-%m-%d %H:%M:%S";
  for (auto _ : state) {
    benchmark::DoNotOptimize(Poco::DateTimeFormatter::format(Poco::LocalDateTime(), format));
  }
}
BENCHMARK(stamp)->Name("stamp/dashed/POCO");

}  // namespace
