// platform/linux_mounts.cpp: the mount table's lines and the choice among them.
#include "platform/linux_mounts.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>
#include <unordered_map>
#include <utility>

#include "platform/linux_text.h"

namespace quillon_com::orb::platform {
namespace {

constexpr std::string_view kRemoteTypes[] = {"9p",     "afs",    "auristorfs", "autofs",
                                             "beegfs", "ceph",   "coda",       "glusterfs",
                                             "gpfs",   "lustre", "ocfs2"};
constexpr std::string_view kRemotePrefixes[] = {"cifs", "nfs", "smb"};
// These stand on devices of their own, though the kernel gives them none.
constexpr std::string_view kDeviceTypes[] = {"bcachefs", "btrfs", "ubifs", "zfs"};
constexpr std::string_view kImageTypes[] = {"composefs", "erofs", "iso9660", "squashfs"};
// What stands at "/" of containers, live systems and virtual machines.
constexpr std::string_view kBaseTypes[] = {"9p", "overlay", "ramfs", "rootfs", "tmpfs", "virtiofs"};
constexpr unsigned kLoopMajor = 7;

template <size_t N>
bool is_one_of(const std::string_view (&list)[N], std::string_view type) {
  return std::find(std::begin(list), std::end(list), type) != std::end(list);
}

bool starts_with(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

bool is_fuse(std::string_view type) { return type == "fuse" || starts_with(type, "fuse."); }

bool is_octal(char c) { return c >= '0' && c <= '7'; }

// The kernel writes a blank, tab, line end and backslash as a backslash and three octal digits.
std::string decoded(std::string_view field) {
  if (field.find('\\') == std::string_view::npos) return std::string(field);
  std::string text;
  text.reserve(field.size());
  for (size_t i = 0; i < field.size(); ++i) {
    if (field[i] == '\\' && i + 3 < field.size() && is_octal(field[i + 1]) &&
        is_octal(field[i + 2]) && is_octal(field[i + 3])) {
      text += static_cast<char>((field[i + 1] - '0') << 6 | (field[i + 2] - '0') << 3 |
                                (field[i + 3] - '0'));
      i += 3;
    } else {
      text += field[i];
    }
  }
  return text;
}

// Takes the text before the next blank off `rest`.
std::string_view take_field(std::string_view* rest) {
  const size_t end = rest->find(' ');
  const std::string_view field = rest->substr(0, end);
  rest->remove_prefix(end == std::string_view::npos ? rest->size() : end + 1);
  return field;
}

bool holds_option(std::string_view options, std::string_view option) {
  while (!options.empty()) {
    const size_t comma = options.find(',');
    if (options.substr(0, comma) == option) return true;
    options.remove_prefix(comma == std::string_view::npos ? options.size() : comma + 1);
  }
  return false;
}

std::optional<unsigned> device_part(std::string_view text) {
  const auto number = decimal_count(text);
  if (!number || *number > std::numeric_limits<unsigned>::max()) return std::nullopt;
  return static_cast<unsigned>(*number);
}

// "36 35 98:0 /part /mnt rw,noatime master:1 - ext3 /dev/root rw,errors=continue"
std::optional<Mount> mount_of(std::string_view line) {
  take_field(&line);
  take_field(&line);
  const std::string_view device = take_field(&line);
  const std::string_view root = take_field(&line);
  const std::string_view point = take_field(&line);
  const std::string_view rest = line;
  const std::string_view options = take_field(&line);
  // From the blank before the optional fields, of which there may be none.
  const size_t separator = rest.find(" - ", options.size());
  const size_t colon = device.find(':');
  if (separator == std::string_view::npos || colon == std::string_view::npos) return std::nullopt;
  const auto major = device_part(device.substr(0, colon));
  const auto minor = device_part(device.substr(colon + 1));
  if (!major || !minor) return std::nullopt;
  line = rest.substr(separator + 3);
  Mount mount{*major, *minor, decoded(root), decoded(point), "", "", false};
  mount.type = decoded(take_field(&line));
  mount.source = decoded(take_field(&line));
  mount.read_only = holds_option(options, "ro") || holds_option(line, "ro");
  if (mount.type.empty() || !starts_with(mount.point, "/")) return std::nullopt;
  if (mount.point.find('\0') != std::string::npos) return std::nullopt;
  return mount;
}

bool names_a_host(std::string_view source) {
  return source == "-hosts" || source.find(':') != std::string_view::npos ||
         source.find("//") != std::string_view::npos;
}

bool is_image(const Mount& mount) {
  if (is_one_of(kImageTypes, mount.type)) return true;
  return mount.read_only && (mount.major == kLoopMajor || starts_with(mount.source, "/dev/loop"));
}

// Mounts with equal keys share their storage.
std::string storage_key(const Mount& mount) {
  if (mount.type == "zfs") return "zfs " + mount.source.substr(0, mount.source.find('/'));
  return std::to_string(mount.major) + ":" + std::to_string(mount.minor);
}

bool stands_before(const Mount& one, const Mount& other) {
  const bool whole = one.root == "/";
  if (whole != (other.root == "/")) return whole;
  return one.point.size() < other.point.size();
}

}  // namespace

std::vector<Mount> mounts_of(std::string_view table) {
  const auto lines = static_cast<size_t>(std::count(table.begin(), table.end(), '\n')) + 1;
  std::vector<Mount> mounts;
  mounts.reserve(lines);
  std::unordered_map<std::string, size_t> places;
  places.reserve(lines);
  while (!table.empty()) {
    auto mount = mount_of(take_line(&table));
    if (!mount) continue;
    const auto [place, is_new] = places.emplace(mount->point, mounts.size());
    if (is_new) {
      mounts.push_back(std::move(*mount));
    } else {
      mounts[place->second] = std::move(*mount);
    }
  }
  return mounts;
}

bool is_remote(const Mount& mount) {
  const bool at_root = mount.point == "/";
  if (at_root && (is_one_of(kBaseTypes, mount.type) || is_fuse(mount.type))) return false;
  if (is_one_of(kRemoteTypes, mount.type)) return true;
  for (std::string_view prefix : kRemotePrefixes) {
    if (starts_with(mount.type, prefix)) return true;
  }
  const bool on_device = starts_with(mount.source, "/dev/");
  if (is_fuse(mount.type)) return !on_device;
  // Device paths and these types' own sources ("ubi0:root") hold colons without naming a host.
  if (on_device || is_one_of(kDeviceTypes, mount.type)) return false;
  return names_a_host(mount.source);
}

bool is_storage(const Mount& mount) {
  if (is_remote(mount)) return false;
  if (mount.point == "/") return true;
  return (mount.major != 0 || is_one_of(kDeviceTypes, mount.type)) && !is_image(mount);
}

std::vector<std::vector<Mount>> storage_groups(std::vector<Mount> mounts) {
  std::vector<std::vector<Mount>> groups;
  std::unordered_map<std::string, size_t> places;
  for (Mount& mount : mounts) {
    if (!is_storage(mount)) continue;
    const auto [place, is_new] = places.emplace(storage_key(mount), groups.size());
    if (is_new) groups.emplace_back();
    groups[place->second].push_back(std::move(mount));
  }
  for (auto& group : groups) std::stable_sort(group.begin(), group.end(), stands_before);
  return groups;
}

}  // namespace quillon_com::orb::platform
