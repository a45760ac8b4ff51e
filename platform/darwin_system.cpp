// platform/darwin_system.cpp: one call of macOS per fact.
#include "platform/darwin_system.h"

// Gestalt is the fact that is asked for; its age does not matter.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

#include <CoreServices/CoreServices.h>
#include <mach/mach.h>
#include <netdb.h>
#include <sys/mount.h>
#include <sys/sysctl.h>

#include <algorithm>
#include <climits>
#include <cstring>

#include "platform/everlasting.h"

namespace quillon_com::orb::platform {
namespace {

// The value of fixed width that sysctl keeps under two numbers; `value` is untouched on failure.
template <class T>
bool read_sysctl(int first, int second, T* value) {
  int name[] = {first, second};
  T answer{};
  size_t size = sizeof answer;
  if (sysctl(name, 2, &answer, &size, nullptr, 0) != 0) return false;
  *value = answer;
  return true;
}

// A field or buffer that ends at its first zero byte or where it is full.
template <size_t N>
std::string field_text(const char (&field)[N]) {
  return std::string(field, strnlen(field, N));
}

constexpr size_t kSpareRecords = 8;  // for what is mounted between two calls
constexpr int kMountReads = 4;       // of a table that keeps outgrowing the buffer
constexpr size_t kMostRecords = INT_MAX / sizeof(struct statfs);

// A full buffer may have cut the table short, so that a larger one is tried.
std::vector<struct statfs> mount_table() {
  std::vector<struct statfs> records;
  int count = getfsstat(nullptr, 0, MNT_NOWAIT);
  size_t room = static_cast<size_t>(std::max(count, 0)) + kSpareRecords;
  for (int reads = 0; count > 0 && reads < kMountReads; ++reads, room *= 2) {
    records.assign(std::min(room, kMostRecords), {});
    const size_t size = records.size() * sizeof(struct statfs);
    count = getfsstat(records.data(), static_cast<int>(size), MNT_NOWAIT);
    if (count >= 0 && static_cast<size_t>(count) < records.size()) break;
  }
  records.resize(std::min(records.size(), static_cast<size_t>(std::max(count, 0))));
  return records;
}

}  // namespace

bool DarwinSystem::official_host_name(const std::string& name, std::string* official) const {
  const hostent* entry = gethostbyname(name.c_str());  // the record is the calling thread's own
  if (entry == nullptr || entry->h_name == nullptr) return false;
  *official = entry->h_name;
  return true;
}

bool DarwinSystem::kernel_domain(std::string* domain) const {
  int name[] = {CTL_KERN, KERN_NISDOMAINNAME};
  char buffer[2048] = {};
  size_t size = sizeof buffer;
  if (sysctl(name, 2, buffer, &size, nullptr, 0) != 0) return false;
  *domain = field_text(buffer);
  return true;
}

bool DarwinSystem::boot_time(time_t* seconds) const {
  timeval boot{};
  if (!read_sysctl(CTL_KERN, KERN_BOOTTIME, &boot)) return false;
  *seconds = boot.tv_sec;
  return true;
}

bool DarwinSystem::release_texts(ReleaseTexts*) const { return false; }

bool DarwinSystem::processor_count(int* count) const { return read_sysctl(CTL_HW, HW_NCPU, count); }

bool DarwinSystem::processor_texts(ProcessorTexts*) const { return false; }

bool DarwinSystem::gestalt(uint32_t selector, int32_t* response) const {
  SInt32 answer = 0;
  if (Gestalt(selector, &answer) != noErr) return false;
  *response = answer;
  return true;
}

bool DarwinSystem::hardware_model(std::string* model) const {
  char buffer[256] = {};
  size_t size = sizeof buffer;
  if (sysctlbyname("hw.model", buffer, &size, nullptr, 0) != 0) return false;
  *model = field_text(buffer);
  return true;
}

Chassis DarwinSystem::chassis() const { return Chassis::not_stated; }

bool DarwinSystem::total_memory(uint64_t* bytes) const {
  return read_sysctl(CTL_HW, HW_MEMSIZE, bytes);
}

bool DarwinSystem::free_memory(uint64_t* pages, uint64_t* page_size) const {
  const mach_port_t port = mach_host_self();
  vm_size_t size = 0;
  vm_statistics_data_t statistics{};
  mach_msg_type_number_t count = HOST_VM_INFO_COUNT;
  const bool known = host_page_size(port, &size) == KERN_SUCCESS &&
                     host_statistics(port, HOST_VM_INFO, reinterpret_cast<host_info_t>(&statistics),
                                     &count) == KERN_SUCCESS;
  mach_port_deallocate(mach_task_self(), port);  // each mach_host_self adds a right
  if (!known) return false;
  *pages = statistics.free_count;
  *page_size = size;
  return true;
}

std::vector<Volume> DarwinSystem::volumes() const {
  std::vector<Volume> result;
  for (const struct statfs& record : mount_table()) {
    Volume& volume = result.emplace_back();
    volume.mount_point = field_text(record.f_mntonname);
    volume.local = (record.f_flags & MNT_LOCAL) != 0;
    volume.block_size = record.f_bsize;
    volume.blocks = record.f_blocks;
    volume.free_blocks = record.f_bfree;
  }
  return result;
}

const System& host() { return everlasting<DarwinSystem>(); }

}  // namespace quillon_com::orb::platform
