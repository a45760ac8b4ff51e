// fuzz/linux_mounts_fuzzer.cpp: any mount table, beside a reader that cuts each line into fields.
#include "platform/linux_mounts.h"

#include <climits>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "fuzz/plain_lines.h"

using orbfuzz::check;
using orbfuzz::plain_count;
using orbfuzz::plain_parts;
using namespace quillon_com::orb::platform;

namespace {

// A backslash and three octal digits are one byte.
std::string plain_decoded(const std::string& field) {
  std::string text;
  for (size_t i = 0; i < field.size();) {
    const std::string digits = field.substr(i + 1, 3);
    if (field[i] == '\\' && digits.size() == 3 &&
        digits.find_first_not_of("01234567") == std::string::npos) {
      text += static_cast<char>(std::stoi(digits, nullptr, 8) % 256);
      i += 4;
    } else {
      text += field[i++];
    }
  }
  return text;
}

bool lists_ro(const std::string& options) {
  for (const std::string& option : plain_parts(options, ','))
    if (option == "ro") return true;
  return false;
}

// Fields: identifiers, device, root, point, options, any number of tags, "-", type, source,
// options.
std::optional<Mount> plain_mount(const std::string& line) {
  const std::vector<std::string> fields = plain_parts(line, ' ');
  size_t dash = 6;
  while (dash + 1 < fields.size() && fields[dash] != "-") ++dash;
  if (dash + 1 >= fields.size()) return std::nullopt;
  const size_t colon = fields[2].find(':');
  if (colon == std::string::npos) return std::nullopt;
  const auto major = plain_count(fields[2].substr(0, colon));
  const auto minor = plain_count(fields[2].substr(colon + 1));
  if (!major || !minor || *major > UINT_MAX || *minor > UINT_MAX) return std::nullopt;
  Mount mount;
  mount.major = static_cast<unsigned>(*major);
  mount.minor = static_cast<unsigned>(*minor);
  mount.root = plain_decoded(fields[3]);
  mount.point = plain_decoded(fields[4]);
  mount.type = plain_decoded(fields[dash + 1]);
  if (dash + 2 < fields.size()) mount.source = plain_decoded(fields[dash + 2]);
  std::string rest;
  for (size_t i = dash + 3; i < fields.size(); ++i) rest += (i == dash + 3 ? "" : " ") + fields[i];
  mount.read_only = lists_ro(fields[5]) || lists_ro(rest);
  const bool sound = !mount.type.empty() && !mount.point.empty() && mount.point[0] == '/' &&
                     mount.point.find('\0') == std::string::npos;
  return sound ? std::optional<Mount>(mount) : std::nullopt;
}

bool same(const Mount& one, const Mount& other) {
  return one.major == other.major && one.minor == other.minor && one.root == other.root &&
         one.point == other.point && one.type == other.type && one.source == other.source &&
         one.read_only == other.read_only;
}

// What is mounted over a point takes its place in the list.
std::vector<Mount> plain_mounts(const std::string& table) {
  std::vector<Mount> mounts;
  for (const std::string& line : plain_parts(table, '\n')) {
    const auto mount = plain_mount(line);
    if (!mount) continue;
    bool covers = false;
    for (Mount& each : mounts) {
      if (each.point != mount->point) continue;
      each = *mount;
      covers = true;
    }
    if (!covers) mounts.push_back(*mount);
  }
  return mounts;
}

void check_groups(const std::vector<Mount>& mounts) {
  size_t storage = 0;
  for (const Mount& mount : mounts) {
    check(!is_remote(mount) || !is_storage(mount));
    storage += is_storage(mount);
  }
  size_t grouped = 0;
  std::set<std::string> points;
  for (const auto& group : storage_groups(mounts)) {
    check(!group.empty());
    for (const Mount& mount : group) {
      check(is_storage(mount) && points.insert(mount.point).second);
      check(group[0].root == "/" || mount.root != "/");
    }
    grouped += group.size();
  }
  check(grouped == storage);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto mounts = mounts_of(text);
  const auto plain = plain_mounts(text);
  check(mounts.size() == plain.size());
  for (size_t i = 0; i < mounts.size(); ++i) check(same(mounts[i], plain[i]));
  check_groups(mounts);
  return 0;
}
