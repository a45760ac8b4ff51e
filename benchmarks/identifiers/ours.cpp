// benchmarks/identifiers/ours.cpp: GUIDs and time stamps, and the plain form of a stamp.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "benchmarks/family.h"
#include "fileutil/guid.h"
#include "fileutil/platformmatch.h"
#include "fileutil/timestamp.h"

namespace {

void guid(benchmark::State& state) {
  voxGuid made;
  for (auto _ : state) {
    voxCoCreateGuid(&made);
    benchmark::DoNotOptimize(made);
  }
  orbbench::goal(state, "goal_ratio_POCO", 1.0);
  orbbench::goal(state, "goal_ratio_libuuid", 0.02);
}
BENCHMARK(guid)->Name("guid/create/ours");

void guid_text(benchmark::State& state) {
  voxGuid made;
  char text[39];
  for (auto _ : state) {
    voxcomn_create_guid(&made, text, sizeof text);
    benchmark::DoNotOptimize(text);
  }
  orbbench::goal(state, "goal_ratio_POCO", 1.0);
  orbbench::goal(state, "goal_ratio_libuuid", 0.02);
}
BENCHMARK(guid_text)->Name("guid/create_text/ours");

void stamp(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(quillon_com::orb::voxcomn_get_time_stamp_ansi());
  orbbench::goal(state, "goal_ratio_localtime_snprintf", 1.5);
  orbbench::goal(state, "goal_ratio_POCO", 0.15);
}
BENCHMARK(stamp)->Name("stamp/dashed/ours");

void plain_stamp(benchmark::State& state) {
  char text[96];
  for (auto _ : state) {
    const time_t now = time(nullptr);
    tm local{};
    localtime_r(&now, &local);
    snprintf(text, sizeof text, "%4d-%02d-%02d %02d:%02d:%02d", local.tm_year + 1900,
             local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(plain_stamp)->Name("stamp/dashed/localtime_snprintf");

void compact_stamp(benchmark::State& state) {
  char text[15];
  for (auto _ : state) {
    voxcomn_CreateLocalTimeStampA(text, sizeof text);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(compact_stamp)->Name("stamp/compact/ours");

void utc_to_seconds(benchmark::State& state) {
  tm time{};
  time.tm_year = 124;
  time.tm_mday = 5;
  for (auto _ : state) benchmark::DoNotOptimize(quillon_com::orb::qlncomn_timegm(&time));
}
BENCHMARK(utc_to_seconds)->Name("utc_to_seconds/normalised/ours");

// In the zone of UTC, put into the environment for as long as it takes.
void plain_utc_to_seconds(benchmark::State& state) {
  tm time{};
  time.tm_year = 124;
  time.tm_mday = 5;
  for (auto _ : state) {
    setenv("TZ", "", 1);
    tzset();
    benchmark::DoNotOptimize(mktime(&time));
    unsetenv("TZ");
    tzset();
  }
}
BENCHMARK(plain_utc_to_seconds)->Name("utc_to_seconds/normalised/mktime_in_utc");

void platform_match(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(voxcomn_IsPlatformMatch(
        "MACX:10:15:7", "OTHR:1:0:0-2:0:0|MACX:9:0:0-10:0:0|MACX:10:0:0-10:99:0"));
  }
}
BENCHMARK(platform_match)->Name("platform_match/third_entry/ours");

}  // namespace
