// platform/linux_volumes.cpp: the volumes of LinuxSystem.
#include <sys/stat.h>
#include <sys/statfs.h>

#include <algorithm>
#include <utility>

#include "platform/linux_system.h"

namespace quillon_com::orb::platform {
namespace {

constexpr size_t kMountTableLimit = size_t{4} << 20;

struct CountedMount {
  Mount mount;
  StorageFigures figures;
};

Volume volume_of(const CountedMount& counted) {
  const StorageFigures& figures = counted.figures;
  const uint64_t unit = figures.fragment_size != 0 ? figures.fragment_size : figures.block_size;
  return Volume{counted.mount.point, true, unit, figures.blocks, figures.free_blocks};
}

bool same_storage(const StorageFigures& one, const StorageFigures& other) {
  return one.blocks == other.blocks && one.block_size == other.block_size &&
         one.files == other.files;
}

// An overlay at "/" shows the figures of the storage below it, which counts once, as "/".
void drop_what_lies_below_root(std::vector<CountedMount>* counted) {
  const auto root = std::find_if(counted->begin(), counted->end(), [](const CountedMount& c) {
    return c.mount.point == "/" && c.mount.type == "overlay";
  });
  if (root == counted->end()) return;
  const StorageFigures figures = root->figures;
  const auto end = std::remove_if(counted->begin(), counted->end(), [&](const CountedMount& c) {
    return c.mount.point != "/" && same_storage(c.figures, figures);
  });
  counted->erase(end, counted->end());
}

}  // namespace

bool LinuxSystem::storage_figures(const std::string& point, StorageFigures* figures) const {
  const std::string path = at(point);
  struct stat status;
  if (stat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return false;
  struct statfs answer;
  if (statfs(path.c_str(), &answer) != 0) return false;
  figures->fragment_size = static_cast<uint64_t>(answer.f_frsize);
  figures->block_size = static_cast<uint64_t>(answer.f_bsize);
  figures->blocks = answer.f_blocks;
  figures->free_blocks = answer.f_bfree;
  figures->files = answer.f_files;
  return true;
}

std::vector<Volume> LinuxSystem::volumes() const {
  std::string table = text_of("/proc/self/mountinfo", kMountTableLimit);
  if (table.size() == kMountTableLimit) table.resize(table.rfind('\n') + 1);
  std::vector<CountedMount> counted;
  for (auto& group : storage_groups(mounts_of(table))) {
    for (Mount& mount : group) {
      StorageFigures figures;
      if (!storage_figures(mount.point, &figures)) continue;
      counted.push_back({std::move(mount), figures});
      break;
    }
  }
  drop_what_lies_below_root(&counted);
  std::vector<Volume> volumes;
  volumes.reserve(counted.size());
  for (const CountedMount& mount : counted) volumes.push_back(volume_of(mount));
  return volumes;
}

}  // namespace quillon_com::orb::platform
