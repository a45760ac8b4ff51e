// fileutil/platformmatch.cpp: whether a platform is in a list of platforms and version ranges.
#include "fileutil/platformmatch.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "fileutil/conversions.h"

namespace {

constexpr uint32_t kMatches = 0;
constexpr uint32_t kOutOfRange = 1;
constexpr uint32_t kNotNamed = 0x80000008;

constexpr size_t kRoom = 260;  // bytes, with the terminator

struct VersionNumbers {
  int major_number;
  int minor_number;
  int build_number;

  uint64_t key() const {
    return (widened(major_number) << 48) + (widened(minor_number) << 16) + widened(build_number);
  }

 private:
  static uint64_t widened(int number) { return static_cast<uint64_t>(int64_t{number}); }
};

// The range that a list has stated so far; see the header.
struct Range {
  VersionNumbers lower{0, 0, 0};
  VersionNumbers upper{65535, -1, 65535};

  bool holds(uint64_t key) const { return lower.key() <= key && key <= upper.key(); }
};

void copy_without_blanks(const char* text, char (&out)[kRoom]) {
  size_t length = 0;
  for (; *text != '\0' && length < kRoom - 1; ++text) {
    if (*text != ' ') out[length++] = *text;
  }
  out[length] = '\0';
}

// Reads as many of the three numbers of "%d:%d:%d" as `text` begins with; the others stay.
void read_numbers(const char* text, VersionNumbers* version) {
  for (int* number : {&version->major_number, &version->minor_number, &version->build_number}) {
    char* end = nullptr;
    const long long value = strtoll(text, &end, 10);
    if (end == text) return;
    *number = static_cast<int>(static_cast<unsigned>(value));
    if (*end != ':') return;
    text = end + 1;
  }
}

// Ends `text` at its first colon and returns what follows; null when there is none.
char* cut_at_colon(char* text) {
  char* const colon = strchr(text, ':');
  if (colon == nullptr) return nullptr;
  *colon = '\0';
  return colon + 1;
}

void read_range(const char* text, Range* range) {
  read_numbers(text, &range->lower);
  if (const char* const dash = strchr(text, '-')) read_numbers(dash + 1, &range->upper);
}

}  // namespace

uint32_t voxcomn_IsPlatformMatch(const char* platform, const char* list) {
  if (platform == nullptr || list == nullptr) return kNotNamed;
  char name[kRoom];
  char entries[kRoom];
  copy_without_blanks(platform, name);
  copy_without_blanks(list, entries);

  VersionNumbers own{0, 0, 0};
  if (const char* const version = cut_at_colon(name)) read_numbers(version, &own);
  Range range;
  uint32_t result = kNotNamed;
  char* rest = nullptr;
  for (char* entry = voxTstrtok_r(entries, "|", &rest); entry != nullptr;
       entry = voxTstrtok_r(nullptr, "|", &rest)) {
    const char* const range_text = cut_at_colon(entry);
    if (strstr(name, entry) == nullptr) continue;
    if (range_text == nullptr) return kMatches;
    read_range(range_text, &range);
    if (range.holds(own.key())) return kMatches;
    result = kOutOfRange;
  }
  return result;
}
