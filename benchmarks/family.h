// benchmarks/family.h: what the programs of all families share.
//
// A name is operation/case/who; a peer whose package is missing has no rows. What goal() and size()
// leave beside a row is read by scripts/bench_table.py, which names the counters.
#pragma once

#include <benchmark/benchmark.h>

namespace orbbench {

// Runs the benchmarks that the command line picks, with a second thread alive: a process with one
// thread pays a third of the C library's price for a lock, and no host process of the library has
// only one. Returns what main returns.
int run_family(int argc, char** argv);

// Leaves `value` as the counter `name` of the row.
inline void goal(benchmark::State& state, const char* name, double value) {
  state.counters[name] = value;
}

constexpr double kLinear = 1;

// Makes the row one of a series over sizes, whose cost is to grow with no more than `order`. The
// part of its name that begins with a digit is the size.
inline void size(benchmark::State& state, double size, double order = kLinear) {
  state.counters["size"] = size;
  state.counters["goal_order"] = order;
}

}  // namespace orbbench
