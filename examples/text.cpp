// examples/text.cpp: UTF-8 to wide characters and back.
#include <cstdio>
#include <string>

#include "fileutil/conversions.h"

int main() {
  using namespace quillon_com::orb;
  const std::string narrow = "Z\xC3\xBCrich";
  const std::wstring wide = voxcomn_ansi_to_wide(narrow);
  const std::string again = voxcomn_wide_to_ansi(wide);
  std::printf("%zu bytes, %zu characters, %zu bytes again\n", narrow.size(), wide.size(),
              again.size());
  std::printf("%s\n", voxcomn_convert_to_upper("a number: ").c_str());
  std::printf("%s\n", voxcomn_long_to_ansi_string(-42).c_str());
  return again == narrow ? 0 : 1;
}
