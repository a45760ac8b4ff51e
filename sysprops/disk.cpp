// sysprops/disk.cpp: size and free space of the local file systems, and their sums.
#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "sysprops/collect.h"

namespace quillon_com::orb::sysprops {

namespace {

constexpr unsigned kSteps = 20;  // of the grid that free amounts change in
constexpr double kMegabyte = 1048576.0;
constexpr size_t kMostCharacters = 32;  // of a size; all that a real file system can reach is less

// Two decimals with "." before them in every locale: servers, not people, read the figure.
std::wstring size_text(double megabytes) {
  char text[400];  // room for every finite number
  snprintf(text, sizeof text, "%.2f", megabytes);
  const std::string printed = text;
  const size_t whole = std::min(printed.find_first_not_of("0123456789"), printed.size());
  const std::string decimals = printed.substr(printed.size() - std::min<size_t>(2, printed.size()));
  return sysprops_ansi_to_wide(
      (printed.substr(0, whole) + "." + decimals).substr(0, kMostCharacters));
}

std::wstring free_text(double free_mb, double total_mb) {
  return size_text(get_closest_floor<double>(free_mb, total_mb, 0, kSteps));
}

}  // namespace

bool collect_disk(const platform::System& system, DiskInformation& record) {
  int count = 0;
  double total_sum = 0;  // megabytes, not rounded
  double free_sum = 0;
  for (const platform::Volume& volume : system.volumes()) {
    if (!volume.local || volume.block_size == 0 || volume.blocks == 0) continue;
    const double divisor = kMegabyte / static_cast<double>(volume.block_size);
    const double total_mb = static_cast<double>(volume.blocks) / divisor;
    const double free_mb = static_cast<double>(volume.free_blocks) / divisor;
    total_sum += total_mb;
    free_sum += free_mb;
    ++count;
    record.fileSystems.insert({sysprops_ansi_to_wide(volume.mount_point),
                               {size_text(total_mb), free_text(free_mb, total_mb)}});
  }
  record.numFileSystems = std::to_wstring(count);
  record.totalDiskSpace = size_text(total_sum);
  record.freeDiskSpace = free_text(free_sum, total_sum);
  return true;
}

bool ISysProps::GetDiskInformation(DiskInformation& record) {
  return collect_disk(platform::host(), record);
}

}  // namespace quillon_com::orb::sysprops
