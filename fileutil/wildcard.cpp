// fileutil/wildcard.cpp: the wildcard matcher.
//
// Behind its first "*" a pattern is a row of segments with a "*" between each two. Each segment is
// put at its leftmost place in what is left of the name: whatever can follow a later place can
// follow the leftmost one too, but for the end of the name, which is therefore tried by itself.
// A segment without bytes has no place there.
#include <cstring>
#include <string_view>

#include "fileutil/dirent.h"

namespace {

constexpr int kMatch = 0;
constexpr int kNoMatch = 1;
constexpr size_t kNowhere = std::string_view::npos;

// Whether `name` begins with `segment`, which is no longer than it and holds no "*".
bool begins_with(std::string_view name, std::string_view segment) {
  for (size_t at = 0; at < segment.size(); ++at) {
    if (segment[at] != '?' && segment[at] != name[at]) return false;
  }
  return true;
}

// The leftmost place of `segment` in `name`.
size_t find(std::string_view segment, std::string_view name) {
  if (segment.find('?') == kNowhere) return name.find(segment);
  for (size_t place = 0; place + segment.size() <= name.size(); ++place) {
    if (begins_with(name.substr(place), segment)) return place;
  }
  return kNowhere;
}

// Matches what follows a "*" of the pattern with what is left of the name.
int match_segments(const char* pattern, std::string_view name) {
  while (!name.empty()) {
    size_t length = 0;
    while (pattern[length] != '*' && pattern[length] != '\0') ++length;
    const std::string_view segment(pattern, length);
    const size_t place = find(segment, name);
    if (place == kNowhere) return kNoMatch;
    if (pattern[length] == '\0') return kMatch;
    if (length != 0 && begins_with(name.substr(name.size() - length), segment)) return kMatch;
    name.remove_prefix(place + length);
    pattern += length + 1;
  }
  return kMatch;
}

}  // namespace

int voxWildCardMatch(const char* pattern, const char* name) {
  if (pattern == nullptr) return kMatch;
  if (name == nullptr) name = "";
  for (; *pattern != '*'; ++pattern, ++name) {
    if (*pattern == '\0') return kMatch;
    if (*name == '\0' || (*pattern != '?' && *pattern != *name)) return kNoMatch;
  }
  return match_segments(pattern + 1, name);
}
