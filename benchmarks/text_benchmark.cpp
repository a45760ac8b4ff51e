// benchmarks/text_benchmark.cpp: the UTF-8 converters beside iconv opened for each call.
//
// A name is operation/text/who; the peer's is the plain form of the same operation: measure the
// text, open, convert into the caller's buffer, terminate, close.
#include <benchmark/benchmark.h>
#include <iconv.h>

#include <cstring>
#include <cwchar>
#include <string>

#include "benchmarks/second_thread.h"
#include "fileutil/conversions.h"

namespace {

using namespace quillon_com::orb;

const std::string kShort = "C:/Program Files";  // 16 bytes
const std::string kAscii = [] {                 // 1 KiB
  std::string text;
  while (text.size() < 1024) text += "the quick brown fox jumps over ";
  return text.substr(0, 1024);
}();
const std::string kMixed = [] {  // 1 KiB: words in several scripts with blanks between
  std::string text;
  while (text.size() < 990)
    text += "na\xC3\xAFve caf\xC3\xA9 \xE2\x82\xAC 12 \xE6\x97\xA5\xE6\x9C\xAC ";
  return text + std::string(1024 - text.size(), '.');
}();

size_t iconv_per_call(const char* to, const char* from, const void* text, size_t bytes, void* out,
                      size_t room) {
  const iconv_t descriptor = iconv_open(to, from);
  char* in = const_cast<char*>(static_cast<const char*>(text));
  char* end = static_cast<char*>(out);
  iconv(descriptor, &in, &bytes, &end, &room);
  iconv_close(descriptor);
  return static_cast<size_t>(end - static_cast<char*>(out));
}

void utf8_to_wide(benchmark::State& state, const std::string& text) {
  std::wstring out(text.size() + 1, L'\0');
  int size = static_cast<int>(out.size());
  for (auto _ : state) {
    voxcomn_utf8_to_unicode(text.c_str(), out.data(), &size);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
}

void utf8_to_wide_iconv(benchmark::State& state, const std::string& text) {
  std::wstring out(text.size() + 1, L'\0');
  for (auto _ : state) {
    iconv_per_call("UTF-32LE", "UTF-8", text.c_str(), std::strlen(text.c_str()) + 1, out.data(),
                   out.size() * sizeof(wchar_t));
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
}

void wide_to_utf8(benchmark::State& state, const std::string& source) {
  const std::wstring text = voxcomn_ansi_to_wide(source);
  std::string out(text.size() * 6 + 1, '\0');
  auto size = static_cast<unsigned>(out.size());
  for (auto _ : state) {
    voxcomn_unicode_to_utf8(text.c_str(), out.data(), &size);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
}

void wide_to_utf8_iconv(benchmark::State& state, const std::string& source) {
  const std::wstring text = voxcomn_ansi_to_wide(source);
  std::string out(text.size() * 6 + 1, '\0');
  for (auto _ : state) {
    const size_t bytes = std::wcslen(text.c_str()) * sizeof(wchar_t);
    out[iconv_per_call("UTF-8", "UTF-32LE", text.c_str(), bytes, out.data(), out.size())] = '\0';
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
}

void ansi_to_wide(benchmark::State& state, const std::string& text) {
  for (auto _ : state) benchmark::DoNotOptimize(voxcomn_ansi_to_wide(text));
}

void wide_to_ansi(benchmark::State& state, const std::string& source) {
  const std::wstring text = voxcomn_ansi_to_wide(source);
  for (auto _ : state) benchmark::DoNotOptimize(voxcomn_wide_to_ansi(text));
}

constexpr double kWrapperGoal = 1.6;  // of a string's conversion to the converter's time

void register_all() {
  struct Text {
    const char* name;
    const std::string* text;
    double goal_to_wide;  // of our time to iconv's
    double goal_to_utf8;
  };
  for (const Text& row : {Text{"16B", &kShort, 0.2, 0.2}, Text{"1KiB_ascii", &kAscii, 0.4, 0.45},
                          Text{"1KiB_mixed", &kMixed, 0.7, 0.7}}) {
    using Run = void (*)(benchmark::State&, const std::string&);
    const auto add = [&row](const std::string& operation, const char* who, Run run,
                            double goal = 0) {
      const auto measure = [run, goal, text = *row.text](benchmark::State& state) {
        run(state, text);
        if (goal > 0) state.counters["goal_ratio"] = goal;
      };
      benchmark::RegisterBenchmark((operation + "/" + row.name + "/" + who).c_str(), measure);
    };
    add("utf8_to_wide", "ours", utf8_to_wide, row.goal_to_wide);
    add("utf8_to_wide", "iconv_per_call", utf8_to_wide_iconv);
    add("utf8_to_wide_string", "ours", ansi_to_wide, kWrapperGoal);
    add("utf8_to_wide_string", "converter", utf8_to_wide);
    add("wide_to_utf8", "ours", wide_to_utf8, row.goal_to_utf8);
    add("wide_to_utf8", "iconv_per_call", wide_to_utf8_iconv);
    add("wide_to_utf8_string", "ours", wide_to_ansi, kWrapperGoal);
    add("wide_to_utf8_string", "converter", wide_to_utf8);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const orbbench::SecondThread second;
  register_all();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
