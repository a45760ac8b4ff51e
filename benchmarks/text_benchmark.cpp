// benchmarks/text_benchmark.cpp: the UTF-8 converters beside iconv opened for each call.
//
// A name is operation/text/who; the peer's is the plain form of the same operation: measure the
// text, open, convert into the caller's buffer, terminate, close.
#include <benchmark/benchmark.h>
#include <iconv.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <string>

#include "benchmarks/family.h"
#include "fileutil/conversions.h"

namespace {

using namespace quillon_com::orb;

// Texts of a length in bytes: ASCII, and words in several scripts with blanks between.
std::string ascii(size_t bytes) {
  std::string text;
  while (text.size() < bytes) text += "the quick brown fox jumps over ";
  return text.substr(0, bytes);
}
std::string mixed(size_t bytes) {
  const std::string words = "na\xC3\xAFve caf\xC3\xA9 \xE2\x82\xAC 12 \xE6\x97\xA5\xE6\x9C\xAC ";
  std::string text;
  while (text.size() + words.size() <= bytes) text += words;
  return text + std::string(bytes - text.size(), '.');
}

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

// What the same memory costs without a look at what is in it.

void plain_to_wide(benchmark::State& state, const std::string& text) {
  std::wstring out(text.size() + 1, L'\0');
  for (auto _ : state) {
    std::copy(text.begin(), text.end(), out.begin());
    benchmark::ClobberMemory();
  }
}

void plain_to_utf8(benchmark::State& state, const std::string& source) {
  const std::wstring text = voxcomn_ansi_to_wide(source);
  std::string out(text.size() + 1, '\0');
  for (auto _ : state) {
    std::transform(text.begin(), text.end(), out.begin(),
                   [](wchar_t element) { return static_cast<char>(element); });
    benchmark::ClobberMemory();
  }
}

void plain_wide_string(benchmark::State& state, const std::string& text) {
  for (auto _ : state) benchmark::DoNotOptimize(std::wstring(text.begin(), text.end()));
}

void plain_string(benchmark::State& state, const std::string& source) {
  const std::wstring text = voxcomn_ansi_to_wide(source);
  for (auto _ : state) benchmark::DoNotOptimize(std::string(text.begin(), text.end()));
}

using Run = void (*)(benchmark::State&, const std::string&);

template <class Note>
void add(const std::string& name, Run run, const std::string& text, Note note) {
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    run(state, text);
    note(state);
  });
}

// Every row of a text: `goal_to_wide` and `goal_to_utf8` are of our time to iconv's, and so is
// what is hoped for beside the first.
void add_text(const std::string& name, const std::string& text, double goal_to_wide,
              double goal_to_utf8, double stretch_to_wide = 0) {
  const auto with_goal = [](double ratio, double stretch = 0) {
    return [=](benchmark::State& state) {
      orbbench::goal(state, "goal_ratio", ratio);
      if (stretch > 0) orbbench::goal(state, "stretch_ratio", stretch);
    };
  };
  const auto plain = [](benchmark::State&) {};
  const auto of_wrapper = with_goal(1.6);
  add("utf8_to_wide/" + name + "/ours", utf8_to_wide, text,
      with_goal(goal_to_wide, stretch_to_wide));
  add("utf8_to_wide/" + name + "/iconv_per_call", utf8_to_wide_iconv, text, plain);
  add("utf8_to_wide_string/" + name + "/ours", ansi_to_wide, text, of_wrapper);
  add("utf8_to_wide_string/" + name + "/converter", utf8_to_wide, text, plain);
  add("wide_to_utf8/" + name + "/ours", wide_to_utf8, text, with_goal(goal_to_utf8));
  add("wide_to_utf8/" + name + "/iconv_per_call", wide_to_utf8_iconv, text, plain);
  add("wide_to_utf8_string/" + name + "/ours", wide_to_ansi, text, of_wrapper);
  add("wide_to_utf8_string/" + name + "/converter", wide_to_utf8, text, plain);
}

// The rows of all sizes of a kind of text.
void add_series(const std::string& kind, std::string (*text_of)(size_t)) {
  struct Size {
    const char* name;
    size_t bytes;
  };
  constexpr size_t kKibibyte = 1024;
  for (const Size& each :
       {Size{"16B", 16}, Size{"1KiB", kKibibyte}, Size{"64KiB", 64 * kKibibyte},
        Size{"1MiB", kKibibyte * kKibibyte}, Size{"16MiB", 16 * kKibibyte * kKibibyte}}) {
    const auto note = [bytes = each.bytes](benchmark::State& state) {
      orbbench::size(state, static_cast<double>(bytes));
    };
    const std::string text = text_of(each.bytes);
    const auto add_pair = [&](const std::string& operation, Run ours, Run plain) {
      const std::string name = operation + "/" + kind + "/" + each.name;
      add(name + "/ours", ours, text, note);
      add(name + "/plain", plain, text, note);
    };
    add_pair("utf8_to_wide", utf8_to_wide, plain_to_wide);
    add_pair("utf8_to_wide_string", ansi_to_wide, plain_wide_string);
    add_pair("wide_to_utf8", wide_to_utf8, plain_to_utf8);
    add_pair("wide_to_utf8_string", wide_to_ansi, plain_string);
  }
}

const bool added = [] {
  add_text("16B", "C:/Program Files", 0.2, 0.2);
  add_text("1KiB_ascii", ascii(1024), 0.4, 0.45, 0.1);
  add_text("1KiB_mixed", mixed(1024), 0.7, 0.7);
  add_series("ascii", ascii);
  add_series("mixed", mixed);
  return true;
}();

}  // namespace
