// benchmarks/directories/paths.cpp: the flattening of paths of up to 4 KiB.
#include "fileutil/paths.h"

#include <string>

#include "benchmarks/directories/rows.h"

namespace orbbench {
namespace {

void add_flattening(const std::string& kind, const std::string& steps) {
  for (const size_t bytes : {64, 128, 256, 512, 1024, 2048, 4096}) {
    std::string path;
    while (path.size() + steps.size() <= bytes) path += steps;
    const auto run = [=](benchmark::State& state) {
      const std::string base = "/";
      for (auto _ : state) {
        std::string flat;
        benchmark::DoNotOptimize(FileNameFlattener(path, base).GetFlatPath(flat));
      }
      size(state, static_cast<double>(bytes));
    };
    benchmark::RegisterBenchmark(
        ("flatten/" + kind + "/" + std::to_string(bytes) + "/ours").c_str(), run);
  }
}

const bool added = [] {
  add_flattening("plain", "/report");
  add_flattening("dots", "/./././.");
  add_flattening("up_and_down", "/deep/er/../..");
  return true;
}();

}  // namespace
}  // namespace orbbench
