// platform/linux_system.cpp: names, files, identification and memory.
#include "platform/linux_system.h"

#include <dirent.h>
#include <netdb.h>
#include <strings.h>
#include <sys/sysinfo.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <limits>
#include <memory>
#include <utility>

#include "platform/everlasting.h"
#include "platform/linux_text.h"
#include "platform/version_list.h"

namespace quillon_com::orb::platform {
namespace {

constexpr uint64_t kKilobyte = 1024;                    // the memory table's "kB"
constexpr size_t kMostStatistics = size_t{4} << 20;     // bytes; a line for each interrupt
constexpr size_t kMostNames = 4096;                     // of one folder
constexpr size_t kMostResolverBytes = size_t{1} << 20;  // of one answer

struct FolderCloser {
  void operator()(DIR* listing) const { closedir(listing); }
};

enum class LookUp { found, no_such_address, failed };

LookUp look_up(const std::string& name, int family, std::string* official) {
  std::vector<char> buffer(2048);
  while (true) {
    hostent entry{};
    hostent* found = nullptr;
    int error = 0;
    const int result = gethostbyname2_r(name.c_str(), family, &entry, buffer.data(), buffer.size(),
                                        &found, &error);
    if (result == ERANGE && buffer.size() < kMostResolverBytes) {
      buffer.resize(buffer.size() * 2);
      continue;
    }
    if (result == 0 && found != nullptr && found->h_name != nullptr) {
      *official = known_name(name, found->h_name, found->h_aliases);
      return LookUp::found;
    }
    return error == HOST_NOT_FOUND || error == NO_DATA ? LookUp::no_such_address : LookUp::failed;
  }
}

bool is_local_name(const char* name) { return strncasecmp(name, "localhost", 9) == 0; }

}  // namespace

const System& host() { return everlasting<LinuxSystem>(); }

LinuxSystem::LinuxSystem(std::string root) : root_(std::move(root)) {}

std::string LinuxSystem::text_of(const std::string& path, size_t limit) const {
  std::string text;
  PosixSystem::file_bytes(at(path), limit, &text);
  return text;
}

std::vector<std::string> LinuxSystem::names_in(const std::string& folder) const {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, FolderCloser> listing(opendir(at(folder).c_str()));
  if (listing == nullptr) return names;
  while (names.size() < kMostNames) {
    const dirent* entry = readdir(listing.get());
    if (entry == nullptr) break;
    if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

bool LinuxSystem::host_name(std::string* name) const {
  if (is_running_machine()) return PosixSystem::host_name(name);
  std::string text = first_line(text_of("/proc/sys/kernel/hostname"));
  if (text.empty()) return false;
  *name = std::move(text);
  return true;
}

bool LinuxSystem::official_host_name(const std::string& name, std::string* official) const {
  if (!is_running_machine()) return false;
  LookUp result = look_up(name, AF_INET, official);
  if (result == LookUp::no_such_address) result = look_up(name, AF_INET6, official);
  return result == LookUp::found;
}

bool LinuxSystem::kernel_domain(std::string* domain) const { return domain_name(domain); }

bool LinuxSystem::domain_name(std::string* domain) const {
  std::string text;
  if (is_running_machine()) {
    if (!PosixSystem::domain_name(&text)) return false;
  } else {
    text = first_line(text_of("/proc/sys/kernel/domainname"));
    if (text.empty()) return false;
  }
  *domain = name_unless_none(std::move(text));
  return true;
}

bool LinuxSystem::kernel_names(KernelNames* names) const {
  if (is_running_machine()) return PosixSystem::kernel_names(names);
  KernelNames read{first_line(text_of("/proc/sys/kernel/hostname")),
                   first_line(text_of("/proc/sys/kernel/arch")),
                   first_line(text_of("/proc/sys/kernel/osrelease"))};
  if (read.node.empty() && read.machine.empty() && read.release.empty()) return false;
  *names = std::move(read);
  return true;
}

bool LinuxSystem::boot_time(time_t* seconds) const {
  if (!is_running_machine()) {
    const auto boot = boot_seconds(text_of("/proc/stat", kMostStatistics));
    if (!boot || *boot > std::numeric_limits<time_t>::max()) return false;
    *seconds = static_cast<time_t>(*boot);
    return true;
  }
  timespec now{};
  timespec running{};
  if (clock_gettime(CLOCK_REALTIME, &now) != 0 || clock_gettime(CLOCK_BOOTTIME, &running) != 0)
    return false;
  *seconds = now.tv_sec - running.tv_sec - (now.tv_nsec < running.tv_nsec ? 1 : 0);
  return true;
}

bool LinuxSystem::file_size(const std::string& path, uint64_t* size) const {
  return PosixSystem::file_size(at(path), size);
}

bool LinuxSystem::file_bytes(const std::string& path, size_t limit, std::string* bytes) const {
  return PosixSystem::file_bytes(at(path), limit, bytes);
}

bool LinuxSystem::property_list_texts(const std::string& bytes,
                                      const std::vector<std::string>& keys,
                                      std::vector<std::optional<std::string>>* texts) const {
  return platform::property_list_texts(bytes, keys, texts);
}

std::string LinuxSystem::legacy_name() const {
  std::string name = settings_of(text_of("/etc/lsb-release"))["DISTRIB_ID"];
  if (name.empty()) name = words_before_release(text_of("/etc/redhat-release"));
  if (name.empty()) name = first_line(text_of("/etc/SuSE-release"));
  return name;
}

bool LinuxSystem::release_texts(ReleaseTexts* texts) const {
  uint64_t size = 0;
  if (file_size("/System/Library/CoreServices/SystemVersionCompat.plist", &size) ||
      file_size("/System/Library/CoreServices/SystemVersion.plist", &size)) {
    return false;
  }
  ReleaseTexts read;
  read.fields = settings_of(text_of("/etc/os-release"));
  if (read.fields.empty()) read.fields = settings_of(text_of("/usr/lib/os-release"));
  const auto name = read.fields.find("NAME");
  if (name == read.fields.end() || name->second.empty()) read.legacy_name = legacy_name();
  read.debian_version = first_line(text_of("/etc/debian_version"));
  const auto chassis_type = decimal_count(first_line(text_of("/sys/class/dmi/id/chassis_type")));
  if (chassis_type && *chassis_type < 256) read.chassis_type = static_cast<int>(*chassis_type);
  *texts = std::move(read);
  return true;
}

bool LinuxSystem::total_memory(uint64_t* bytes) const {
  const MemoryFigures figures = memory_figures();
  if (figures.total) *bytes = *figures.total;
  return figures.total.has_value();
}

bool LinuxSystem::free_memory(uint64_t* pages, uint64_t* page_size) const {
  const MemoryFigures figures = memory_figures();
  if (!figures.free_pages) return false;
  *pages = *figures.free_pages;
  *page_size = figures.page_size;
  return true;
}

MemoryFigures LinuxSystem::memory_figures() const {
  const std::string table = text_of("/proc/meminfo");
  const auto total = memory_kilobytes(table, "MemTotal");
  const auto free = memory_kilobytes(table, "MemFree");
  MemoryFigures figures;
  if (total) figures.total = *total * kKilobyte;
  if (free) {
    figures.free_pages = *free;
    figures.page_size = kKilobyte;
  }
  struct sysinfo kernel {};
  if ((total && free) || !is_running_machine() || sysinfo(&kernel) != 0) return figures;
  if (!total) figures.total = uint64_t{kernel.totalram} * kernel.mem_unit;
  if (!free) {
    figures.free_pages = kernel.freeram;
    figures.page_size = kernel.mem_unit;
  }
  return figures;
}

std::string known_name(const std::string& name, const char* official, char* const* aliases) {
  if (!is_local_name(official) || is_local_name(name.c_str())) return official;
  const std::string start = name + ".";
  for (char* const* alias = aliases; alias != nullptr && *alias != nullptr; ++alias) {
    if (strncasecmp(*alias, start.c_str(), start.size()) == 0) return *alias;
  }
  return name;
}

}  // namespace quillon_com::orb::platform
