// platform/linux_mounts.h: which lines of the mount table are storage of this machine; pure.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillon_com::orb::platform {

// One line of the mount table, its paths decoded.
struct Mount {
  unsigned major = 0;  // of the device; 0 for a file system without one
  unsigned minor = 0;
  std::string root;    // the part of the file system that is seen here; "/" is all of it
  std::string point;   // where it is mounted; begins with "/"
  std::string type;    // "ext4"
  std::string source;  // "/dev/sda1", "server:/export", "tmpfs"
  bool read_only = false;
};

// The figures of one file system, as it states them.
struct StorageFigures {
  uint64_t fragment_size = 0;  // bytes; 0 where only block_size is stated
  uint64_t block_size = 0;     // bytes
  uint64_t blocks = 0;         // of fragment_size, else of block_size
  uint64_t free_blocks = 0;    // likewise
  uint64_t files = 0;          // inodes
};

// The lines of a mount table in the form of /proc/self/mountinfo. A line that is no such line is
// passed over. A later line for the same mount point takes the place of an earlier one.
std::vector<Mount> mounts_of(std::string_view table);

// Whether asking the file system for its figures can wait for another machine (or mount one): the
// network types, the automounter, and sources that name a host. A "/" of the 9p or FUSE type is
// what a container or a virtual machine stands on, and is asked.
bool is_remote(const Mount& mount);

// Whether the mount is storage of this machine that counts: block devices, the file systems that
// bring devices of their own together, and whatever stands at "/"; never a remote one, nor, below
// "/", a read-only image.
bool is_storage(const Mount& mount);

// The mounts that count, one group for each storage: a device, or a ZFS pool. Groups stand in the
// order of their first line. In a group the line that shows the whole file system stands first,
// then the one with the shorter mount point.
std::vector<std::vector<Mount>> storage_groups(std::vector<Mount> mounts);

}  // namespace quillon_com::orb::platform
