// tests/darwin/scripted_kernel.cpp: sysctl, Gestalt, Mach, the mount table and the sessions.
#include <CoreServices/CoreServices.h>
#include <assert.h>
#include <ctype.h>
#include <mach/mach.h>
#include <sys/sysctl.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/darwin/scripted_macos.h"
#include "tests/support/faults.h"

namespace orbtest {

Mac& mac() {
  static Mac current;
  return current;
}

struct statfs mounted_volume(const std::string& mount_point, uint32_t flags, uint32_t block_size,
                             uint64_t blocks, uint64_t free_blocks) {
  struct statfs record {};
  record.f_flags = flags;
  record.f_bsize = block_size;
  record.f_blocks = blocks;
  record.f_bfree = free_blocks;
  record.f_bavail = free_blocks / 2;
  mount_point.copy(record.f_mntonname, sizeof record.f_mntonname);
  return record;
}

struct utmpx session_record(short type, const std::string& id, const std::string& user,
                            const std::string& line) {
  struct utmpx record {};
  record.ut_type = type;
  id.copy(record.ut_id, sizeof record.ut_id);
  user.copy(record.ut_user, sizeof record.ut_user);
  line.copy(record.ut_line, sizeof record.ut_line);
  return record;
}

namespace {

constexpr mach_port_t kTask = 0x103;
constexpr mach_port_t kHostPort = 0x1203;

template <class Map, class Key>
const std::string* find(const Map& map, const Key& key) {
  const auto found = map.find(key);
  return found == map.end() ? nullptr : &found->second;
}

// A buffer too small for the whole value gets what fits, and the call fails.
int answer(const std::string* value, void* old, size_t* old_size) {
  if (value == nullptr) {
    errno = ENOENT;
    return -1;
  }
  const size_t room = *old_size;
  *old_size = std::min(room, value->size());
  memcpy(old, value->data(), *old_size);
  if (room >= value->size()) return 0;
  errno = ENOMEM;
  return -1;
}

bool is_host(host_t host) {
  if (host == kHostPort && mac().host_rights > 0) return true;
  mac().misuse.push_back("a port that is not the host's");
  return false;
}

}  // namespace
}  // namespace orbtest

using orbtest::mac;

mach_port_t mach_task_self_ = orbtest::kTask;

int sysctl(int* name, u_int name_size, void* old, size_t* old_size, void*, size_t) {
  if (name_size != 2) mac().misuse.push_back("a name of other than two numbers");
  return orbtest::answer(orbtest::find(mac().kernel_values, std::pair(name[0], name[1])), old,
                         old_size);
}

int sysctlbyname(const char* name, void* old, size_t* old_size, void*, size_t) {
  const orbtest::FaultsPaused own_memory;
  return orbtest::answer(orbtest::find(mac().named_values, name), old, old_size);
}

OSErr Gestalt(OSType selector, SInt32* response) {
  const auto found = mac().gestalts.find(selector);
  if (found == mac().gestalts.end()) return -5551;
  *response = found->second;
  return noErr;
}

mach_port_t mach_host_self() {
  ++mac().host_rights;
  ++mac().host_rights_taken;
  return orbtest::kHostPort;
}

kern_return_t mach_port_deallocate(mach_port_t task, mach_port_t port) {
  if (task != orbtest::kTask) mac().misuse.push_back("a task that is not this one");
  if (!orbtest::is_host(port)) return KERN_INVALID_ARGUMENT;
  --mac().host_rights;
  return KERN_SUCCESS;
}

kern_return_t host_page_size(host_t host, vm_size_t* size) {
  if (!orbtest::is_host(host) || !mac().page_size) return KERN_INVALID_ARGUMENT;
  *size = *mac().page_size;
  return KERN_SUCCESS;
}

kern_return_t host_statistics(host_t host, host_flavor_t flavor, host_info_t statistics,
                              mach_msg_type_number_t* count) {
  if (flavor != HOST_VM_INFO || *count != 15) mac().misuse.push_back("other statistics");
  if (!orbtest::is_host(host) || !mac().free_pages) return KERN_FAILURE;
  vm_statistics_data_t record;
  memset(&record, 0x5a, sizeof record);
  record.free_count = *mac().free_pages;
  memcpy(statistics, &record, sizeof record);
  return KERN_SUCCESS;
}

int getfsstat(struct statfs* table, int size, int mode) {
  if (mode != MNT_NOWAIT) mac().misuse.push_back("a mount table that may block");
  if (size < 0) mac().misuse.push_back("a mount table of negative size");
  const auto& mounts = mac().mounts;
  const size_t call = mac().mount_calls++;
  if (mounts.empty() || !mounts[std::min(call, mounts.size() - 1)]) return -1;
  const auto& records = *mounts[std::min(call, mounts.size() - 1)];
  if (table == nullptr) return static_cast<int>(records.size());
  const size_t room = static_cast<size_t>(size) / sizeof *table;
  const size_t given = std::min(room, records.size());
  std::copy_n(records.begin(), given, table);
  return static_cast<int>(mac().mounts_overstated ? records.size() : given);
}

// The record of the first mount table that is mounted at `path`.
int statfs(const char* path, struct statfs* record) {
  const auto& mounts = mac().mounts;
  if (mounts.empty() || !mounts.front()) return -1;
  for (const struct statfs& each : *mounts.front()) {
    if (strcmp(each.f_mntonname, path) != 0) continue;
    *record = each;
    return 0;
  }
  return -1;
}

struct utmpx* getutxent() {
  if (mac().session_cursor >= mac().sessions.size()) return nullptr;
  return &mac().sessions[mac().session_cursor++];
}

void setutxent() { mac().session_cursor = 0; }

// The classes of the host's own tables.
int __maskrune(int c, unsigned long classes) {
  if (c < 0 || c > 255) mac().misuse.push_back("a character outside the tables");
  const unsigned short bits = (*__ctype_b_loc())[static_cast<unsigned char>(c)];
  return ((classes & _CTYPE_A) != 0 && (bits & _ISalpha) != 0) ||
         ((classes & _CTYPE_D) != 0 && (bits & _ISdigit) != 0) ||
         ((classes & _CTYPE_S) != 0 && (bits & _ISspace) != 0);
}

int __tolower(int c) { return (*__ctype_tolower_loc())[static_cast<unsigned char>(c)]; }

int __toupper(int c) { return (*__ctype_toupper_loc())[static_cast<unsigned char>(c)]; }

// As macOS words it.
void __assert_rtn(const char* function, const char* source, int line, const char* expression) {
  fprintf(stderr, "Assertion failed: (%s), function %s, file %s, line %d.\n", expression, function,
          source, line);
  abort();
}
