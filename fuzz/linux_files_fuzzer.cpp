// fuzz/linux_files_fuzzer.cpp: a machine all of whose files below /proc, /sys, /etc and /run hold
// the same bytes, whatever they are: its facts are what the readers of the texts make of them.
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "fuzz/check.h"
#include "platform/linux_system.h"
#include "platform/linux_text.h"
#include "tests/support/temp_dir.h"

using orbfuzz::check;
using namespace quillon_com::orb::platform;

namespace {

const char* const kFiles[] = {
    "/proc/cpuinfo",
    "/proc/device-tree/cpus/cpu@0/clock-frequency",
    "/proc/device-tree/model",
    "/proc/meminfo",
    "/proc/self/mountinfo",
    "/proc/stat",
    "/proc/sys/kernel/arch",
    "/proc/sys/kernel/domainname",
    "/proc/sys/kernel/hostname",
    "/proc/sys/kernel/osrelease",
    "/sys/class/dmi/id/chassis_type",
    "/sys/devices/system/cpu/cpu0/cpufreq/base_frequency",
    "/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq",
    "/sys/devices/system/cpu/online",
    "/sys/firmware/acpi/pm_profile",
    "/etc/debian_version",
    "/etc/os-release",
    "/run/systemd/sessions/1",
};

// One file under all the names, so that an input is written once.
class Machine {
 public:
  Machine()
      : bytes_(folder_.write("bytes", "")),
        file_(open(bytes_.c_str(), O_WRONLY | O_CLOEXEC)),
        system_(folder_.path()) {
    for (const char* const file : kFiles) {
      const std::filesystem::path path = folder_.path(file);
      std::filesystem::create_directories(path.parent_path());
      std::filesystem::create_hard_link(bytes_, path);
    }
  }
  const LinuxSystem& holding(const std::string& bytes) {
    check(pwrite(file_, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
    check(ftruncate(file_, static_cast<off_t>(bytes.size())) == 0);
    return system_;
  }

 private:
  orbtest::TempDir folder_;
  std::string bytes_;
  const int file_;
  LinuxSystem system_;
};

std::string reached(const std::string& text, size_t limit) { return text.substr(0, limit); }

void check_names(const LinuxSystem& system, const std::string& text) {
  const std::string line = first_line(text);
  std::string name = "old";
  check(system.host_name(&name) == !line.empty());
  check(name == (line.empty() ? "old" : line));
  name = "old";
  check(system.domain_name(&name) == !line.empty());
  check(name == (line.empty() ? "old" : name_unless_none(line)));
  KernelNames names;
  check(system.kernel_names(&names) == !line.empty());
  check(names.node == line && names.machine == line && names.release == line);
}

void check_figures(const LinuxSystem& system, const std::string& text) {
  time_t boot = -1;
  const auto seconds = boot_seconds(text);
  check(system.boot_time(&boot) == (seconds && *seconds <= INT64_MAX));
  if (boot != -1) check(static_cast<uint64_t>(boot) == *seconds);
  int processors = -1;
  const auto listed = listed_processors(text);
  check(system.processor_count(&processors) == listed.has_value());
  check(processors == listed.value_or(-1));
  const auto total = memory_kilobytes(text, "MemTotal");
  const auto free = memory_kilobytes(text, "MemFree");
  const MemoryFigures figures = system.memory_figures();
  check(figures.total.has_value() == total.has_value());
  if (total) check(*figures.total == *total * 1024);
  check(figures.free_pages == free && (!free || figures.page_size == 1024));
}

void check_machine(const LinuxSystem& system, const std::string& text) {
  ProcessorTexts processor;
  check(system.processor_texts(&processor));
  check(processor.architecture == first_line(text));
  CpuInfo info = cpu_info(reached(text, 1024));
  if (!info.hypervisor) info = cpu_info(reached(text, 4096));
  const std::string model = processor_model(info);
  check(processor.model == (model.empty() ? first_line(text) : model));
  check(!processor.clock_hz || *processor.clock_hz != 0);
  const auto type = decimal_count(first_line(reached(text, 64)));
  const Chassis chassis = system.chassis();
  if (type && *type != 0)
    check(chassis == (is_portable_chassis(*type) ? Chassis::portable : Chassis::stationary));
  ReleaseTexts release;
  check(system.release_texts(&release));
  check(release.fields == settings_of(text));
  check(release.debian_version == first_line(text));
  system.volumes();
}

// The only session of the machine, as long as its accounting file is not there.
void check_session(const LinuxSystem& system, const std::string& text) {
  const auto session = session_of("1", reached(text, 4096));
  SessionEntry entry;
  system.rewind_sessions();
  check(system.next_session_entry(&entry) == session.has_value());
  if (session) check(entry.user == session->user && entry.line == session->line);
  check(!system.next_session_entry(&entry));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Machine machine;
  const std::string text(reinterpret_cast<const char*>(data), size);
  const LinuxSystem& system = machine.holding(text);
  check_names(system, text);
  check_figures(system, text);
  check_machine(system, text);
  check_session(system, text);
  return 0;
}
