// fileutil/localetext.cpp: wide text to and from the encoding of the process's locale.
#include <climits>
#include <cstring>
#include <cwchar>

#include "fileutil/conversions.h"

namespace {

constexpr size_t kFailed = static_cast<size_t>(-1);

int written(size_t result) { return result == kFailed ? 0 : static_cast<int>(result); }

}  // namespace

int voxStandardUtoA(const wchar_t* source, int count, char* destination) {
  if (source == nullptr) return 0;
  // Some C libraries write nothing for a limit that reaches past the address space, so that no
  // limit is the most that the text can need.
  const size_t limit =
      count >= 0 ? static_cast<size_t>(count) : (std::wcslen(source) + 1) * MB_LEN_MAX;
  std::mbstate_t state{};
  return written(wcsrtombs(destination, &source, limit, &state));
}

int voxStandardAtoU(const char* source, int count, wchar_t* destination) {
  if (source == nullptr) return 0;
  const size_t limit = count >= 0 ? static_cast<size_t>(count) : std::strlen(source) + 1;
  std::mbstate_t state{};
  return written(mbsrtowcs(destination, &source, limit, &state));
}
