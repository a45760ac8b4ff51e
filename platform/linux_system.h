// platform/linux_system.h: the facts of a Linux machine.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "platform/linux_cpuinfo.h"
#include "platform/linux_mounts.h"
#include "platform/posix_system.h"

namespace quillon_com::orb::platform {

// Reads /proc, /sys, /etc and /run below a root folder, "" for the running machine. With any other
// root it is the machine whose files stand there: what the kernel or the resolver would be asked
// comes from files too (the kernel's names from /proc/sys/kernel, the number of processors from
// /sys/devices/system/cpu/online), or cannot be read. Clock, accounts, commands, sockets and
// interfaces stay those of the running machine.
//
// Files are read up to a fixed size each (64 KiB; the mount table and /proc/stat 4 MiB, the
// processor's text and session files 4 KiB); what lies beyond is not seen.
class LinuxSystem : public PosixSystem {
 public:
  explicit LinuxSystem(std::string root = "");

  bool interface_entries(std::vector<InterfaceEntry>* entries) const override;
  // Through one socket, where if_nametoindex opens one for each name.
  std::vector<unsigned> interface_indexes(const std::vector<std::string>& names) const override;

  bool host_name(std::string* name) const override;
  // IPv4 first; IPv6 only when the resolver knows the name but no such address, or not the name;
  // never after a look-up that ran into its time-out. Where the resolver calls a host of another
  // name "localhost...", the answer is the host's first alias of the form NAME.DOMAIN, else `name`.
  bool official_host_name(const std::string& name, std::string* official) const override;
  bool kernel_domain(std::string* domain) const override;
  bool domain_name(std::string* domain) const override;
  bool kernel_names(KernelNames* names) const override;

  // The kernel's clocks; with a root of files the "btime" line of /proc/stat.
  bool boot_time(time_t* seconds) const override;

  // The entries of the user-accounting file; where that gives none and does not exist, those of
  // the login manager's session files, in the order of their names.
  bool next_session_entry(SessionEntry* entry) const override;
  void rewind_sessions() const override;

  bool file_size(const std::string& path, uint64_t* size) const override;
  bool file_bytes(const std::string& path, size_t limit, std::string* bytes) const override;
  bool property_list_texts(const std::string& bytes, const std::vector<std::string>& keys,
                           std::vector<std::optional<std::string>>* texts) const override;
  bool release_texts(ReleaseTexts* texts) const override;

  bool processor_count(int* count) const override;
  bool processor_texts(ProcessorTexts* texts) const override;
  bool gestalt(uint32_t selector, int32_t* response) const override;  // false
  bool hardware_model(std::string* model) const override;             // false
  Chassis chassis() const override;

  bool total_memory(uint64_t* bytes) const override;
  // In pages of 1024 bytes, the unit of the memory table; of one byte where the kernel is asked.
  bool free_memory(uint64_t* pages, uint64_t* page_size) const override;
  MemoryFigures memory_figures() const override;
  // The storage of this machine, each once (linux_mounts.h). No remote file system is asked.
  std::vector<Volume> volumes() const override;

 protected:
  // Whether kernel and resolver are asked as well; with an empty root alone.
  virtual bool is_running_machine() const { return root_.empty(); }
  // The figures of the file system mounted at `point`, a folder; false when it is none or is not
  // answered.
  virtual bool storage_figures(const std::string& point, StorageFigures* figures) const;

 private:
  struct SessionCursor {
    bool accounting_ended = false;
    bool gave_entry = false;              // of the accounting file, since the last rewind
    std::vector<SessionEntry> remaining;  // of the session files; the next one last
  };

  std::string at(const std::string& path) const { return root_ + path; }
  // The name by the release files that are older than os-release; empty when none tells one.
  std::string legacy_name() const;
  // Empty when the file cannot be read.
  std::string text_of(const std::string& path, size_t limit = 65536) const;
  std::vector<std::string> names_in(const std::string& folder) const;  // sorted; bounded
  CpuInfo read_cpu_info() const;
  std::optional<uint64_t> number_in(const std::string& path) const;  // nothing for 0
  std::optional<uint64_t> clock_hz(const CpuInfo& info) const;
  std::optional<uint64_t> device_tree_clock() const;
  void use_accounting_file() const;
  std::vector<SessionEntry> session_files() const;

  const std::string root_;
  // A running machine that was once virtual stays so; the text, which costs more than any other
  // fact of the report, is not read again for that.
  mutable std::atomic<bool> seen_hypervisor_{false};
  mutable SessionCursor cursor_;  // guarded by the mutex of linux_sessions.cpp
};

// The name by which a host is known that the resolver gives `official` and `aliases` (ended by a
// null pointer; may be null) for when asked for `name`: see official_host_name.
std::string known_name(const std::string& name, const char* official, char* const* aliases);

}  // namespace quillon_com::orb::platform
