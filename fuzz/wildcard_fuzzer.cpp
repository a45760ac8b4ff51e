// fuzz/wildcard_fuzzer.cpp: any pattern and name, beside the plain form of the rules.
#include <cstdint>
#include <string>

#include "fileutil/dirent.h"
#include "fuzz/check.h"
#include "tests/support/plain_wildcard.h"

using orbfuzz::check;

namespace {

constexpr long kMostSteps = 3000;

void check_pair(const std::string& pattern, const std::string& name) {
  const int result = voxWildCardMatch(pattern.c_str(), name.c_str());
  check(result == 0 || result == 1);
  long steps = kMostSteps;
  const int expected = orbtest::plain_wildcard_match(pattern.c_str(), name.c_str(), &steps);
  if (steps > 0) check(result == expected);
}

// The same text in the two letters and two wildcards where most rules meet.
std::string folded(const std::string& text, const char (&letters)[5]) {
  std::string result;
  for (const char byte : text) result += letters[static_cast<unsigned char>(byte) % 4];
  return result;
}

}  // namespace

// The first line is the pattern, the rest the name.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const size_t line = text.find('\n');
  const std::string pattern = text.substr(0, line);
  const std::string name = line == std::string::npos ? "" : text.substr(line + 1);
  check_pair(pattern, name);
  check_pair(name, pattern);
  check_pair(folded(pattern, "ab?*"), folded(name, "abab"));
  return 0;
}
