// fileutil/wildcard.cpp: the wildcard matcher.
//
// Behind its first "*" a pattern is a row of segments with a "*" between each two. Each segment is
// put at its leftmost place in what is left of the name: whatever can follow a later place can
// follow the leftmost one too, but for the end of the name, which is therefore tried by itself.
// A segment without bytes has no place there.
#include <algorithm>
#include <cstdint>
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

// Sixteen bytes that are compared and combined at once.
using Bytes [[gnu::vector_size(16)]] = signed char;

// Places next to each other at which a segment may begin, kLanes sixteens of them: a byte of ones
// for each that nothing speaks against yet.
template <size_t kLanes>
class Places {
 public:
  static constexpr size_t kCount = kLanes * sizeof(Bytes);

  Places() {
    for (Bytes& lane : lanes_) lane = Bytes{} == Bytes{};
  }

  // Keeps those whose bytes, one for each place at `bytes`, are `wanted`.
  void keep(const char* bytes, char wanted) {
    for (Bytes& lane : lanes_) {
      Bytes there;
      std::memcpy(&there, bytes, sizeof there);
      lane &= there == static_cast<signed char>(wanted);
      bytes += sizeof there;
    }
  }

  bool any() const {
    Bytes left{};
    for (const Bytes& lane : lanes_) left |= lane;
    uint64_t halves[2];
    std::memcpy(halves, &left, sizeof left);
    return (halves[0] | halves[1]) != 0;
  }

  // The first place that is left; kCount when there is none.
  size_t first() const {
    unsigned char left[kCount];
    std::memcpy(left, lanes_, sizeof left);
    return static_cast<size_t>(std::find(left, left + kCount, 0xFF) - left);
  }

 private:
  Bytes lanes_[kLanes];
};

// The leftmost place of `segment` among the first kCount of `text`, which has bytes for all of
// them; kCount when it has none there.
template <size_t kLanes>
size_t first_place(std::string_view segment, const char* text) {
  constexpr size_t kLook = 16;  // bytes of the segment between looks whether any place is left
  Places<kLanes> places;
  for (size_t at = 0; at < segment.size(); ++at) {
    if (segment[at] != '?') places.keep(text + at, segment[at]);
    if (at % kLook == kLook - 1 && !places.any()) break;
  }
  return places.first();
}

// The leftmost place of `segment` in `name`, which has at least kCount places for it: as many at a
// time, the last of them tried with some of those before.
template <size_t kLanes>
size_t find_in_lanes(std::string_view segment, std::string_view name) {
  constexpr size_t kCount = Places<kLanes>::kCount;
  const size_t last = name.size() - segment.size() + 1 - kCount;
  for (size_t base = 0;; base = std::min(base + kCount, last)) {
    const size_t found = first_place<kLanes>(segment, name.data() + base);
    if (found != kCount) return base + found;
    if (base == last) return kNowhere;
  }
}

size_t find_one_by_one(std::string_view segment, std::string_view name) {
  for (size_t place = 0; place + segment.size() <= name.size(); ++place) {
    if (begins_with(name.substr(place), segment)) return place;
  }
  return kNowhere;
}

// Without question marks: a long segment is left to the C library, which takes linear time.
size_t find_literal(std::string_view segment, std::string_view name) {
  constexpr size_t kShort = 32;
  if (segment.size() <= kShort) return name.find(segment);
  const void* found = memmem(name.data(), name.size(), segment.data(), segment.size());
  if (found == nullptr) return kNowhere;
  return static_cast<size_t>(static_cast<const char*>(found) - name.data());
}

// The leftmost place of `segment` in `name`.
size_t find(std::string_view segment, std::string_view name) {
  if (segment.size() > name.size()) return kNowhere;
  if (segment.find('?') == kNowhere) return find_literal(segment, name);
  const size_t places = name.size() - segment.size() + 1;
  if (places >= Places<4>::kCount) return find_in_lanes<4>(segment, name);
  if (places >= Places<1>::kCount) return find_in_lanes<1>(segment, name);
  return find_one_by_one(segment, name);
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
