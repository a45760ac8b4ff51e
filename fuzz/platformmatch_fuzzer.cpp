// fuzz/platformmatch_fuzzer.cpp: any platform in any list, beside the plain form of the rules.
#include <cstdint>
#include <string>

#include "fileutil/platformmatch.h"
#include "fuzz/check.h"
#include "tests/support/plain_platform_match.h"

// The first line is the platform, the rest the list.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const size_t line = text.find('\n');
  const std::string platform = text.substr(0, line);
  const std::string list = line == std::string::npos ? "" : text.substr(line + 1);
  orbfuzz::check(voxcomn_IsPlatformMatch(platform.c_str(), list.c_str()) ==
                 orbtest::plain_platform_match(platform, list));
  return 0;
}
