// benchmarks/tool_benchmark.cpp: runs of the report tool, from spawning it to its end.
//
// The empty program beside it is what starting any program costs here.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "benchmarks/family.h"
#include "tests/support/peak_memory.h"

namespace {

constexpr double kMillisecond = 1e6;  // in the nanoseconds of goal_ns
constexpr double kMebibyte = 1024 * 1024;

// Runs words[0] with its arguments, output to the null device. Returns whether it exited with 0.
bool run(const std::vector<const char*>& words) {
  std::vector<char*> arguments;
  for (const char* word : words) arguments.push_back(const_cast<char*>(word));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  const int error = posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  return error == 0 && waitpid(child, &status, 0) == child && status == 0;
}

void spawn(benchmark::State& state, const std::vector<const char*>& words, double goal_ns) {
  for (auto _ : state) {
    if (!run(words)) state.SkipWithError("the program failed");
  }
  if (goal_ns > 0) orbbench::goal(state, "goal_ns", goal_ns);
}

void peak(benchmark::State& state, const std::vector<const char*>& words, double goal_bytes) {
  double bytes = 0;
  for (auto _ : state) {
    bytes = double(orbtest::peak_resident_kib({words.begin(), words.end()})) * 1024;
  }
  if (bytes == 0) state.SkipWithError("the program failed, or cannot be traced");
  orbbench::goal(state, "peak_bytes", bytes);
  orbbench::goal(state, "goal_bytes", goal_bytes);
}

BENCHMARK_CAPTURE(spawn, report, {ORBPROPS_TOOL}, 3 * kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(spawn, report_json, {ORBPROPS_TOOL, "--json"}, 3 * kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(spawn, get_OSVersion, {ORBPROPS_TOOL, "get", "OSVersion"}, 2 * kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(spawn, get_IPAddress, {ORBPROPS_TOOL, "get", "IPAddress"}, 2 * kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(spawn, empty_program, {"/bin/true"}, 0)->UseRealTime();
BENCHMARK_CAPTURE(peak, report, {ORBPROPS_TOOL}, 6 * kMebibyte)->UseRealTime();

}  // namespace
