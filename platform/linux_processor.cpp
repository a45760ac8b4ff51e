// platform/linux_processor.cpp: the processor and chassis facts of LinuxSystem.
#include <fcntl.h>
#include <unistd.h>

#include <limits>
#include <utility>

#include "platform/linux_system.h"
#include "platform/linux_text.h"

namespace quillon_com::orb::platform {
namespace {

// A processor's own lines come first and fit; the text goes on for every further processor.
constexpr size_t kCpuInfoLimit = 4096;
// The kernel makes the text as it is read, processor by processor and slowly.
constexpr size_t kCpuInfoPiece = 1024;
// Without waiting: a pipe that nobody writes to is an empty file.
constexpr int kReadFlags = O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
constexpr char kProcessorFolder[] = "/proc/device-tree/cpus";
constexpr uint64_t kKilo = 1000;

}  // namespace

CpuInfo LinuxSystem::read_cpu_info() const {
  const Descriptor file(open(at("/proc/cpuinfo").c_str(), kReadFlags));
  if (!file.is_open()) return CpuInfo{};
  std::string text;
  read_descriptor(file.number(), kCpuInfoPiece, &text);
  CpuInfo info = cpu_info(text);
  // The flags stand behind the name and the clock: once they show this one, all is said.
  if (!info.hypervisor && text.size() == kCpuInfoPiece) {
    read_descriptor(file.number(), kCpuInfoLimit - kCpuInfoPiece, &text);
    info = cpu_info(text);
  }
  if (info.hypervisor && is_running_machine()) seen_hypervisor_ = true;
  return info;
}

std::optional<uint64_t> LinuxSystem::number_in(const std::string& path) const {
  const auto number = decimal_count(first_line(text_of(path, 64)));
  return number == uint64_t{0} ? std::nullopt : number;
}

std::optional<uint64_t> LinuxSystem::device_tree_clock() const {
  for (const std::string& name : names_in(kProcessorFolder)) {
    const std::string path = std::string(kProcessorFolder) + "/" + name + "/clock-frequency";
    const auto clock = device_tree_number(text_of(path, 9));
    if (clock && *clock != 0) return clock;
  }
  return std::nullopt;
}

std::optional<uint64_t> LinuxSystem::clock_hz(const CpuInfo& info) const {
  constexpr uint64_t kMost = std::numeric_limits<uint64_t>::max() / kKilo;
  const std::string folder = "/sys/devices/system/cpu/cpu0/cpufreq/";
  const auto base = number_in(folder + "base_frequency");  // kHz
  if (base && *base <= kMost) return *base * kKilo;
  if (const auto named = clock_in_model(info.model_name)) return named;
  const auto highest = number_in(folder + "cpuinfo_max_freq");  // kHz
  if (highest && *highest <= kMost) return *highest * kKilo;
  if (info.clock_hz) return info.clock_hz;
  return device_tree_clock();
}

bool LinuxSystem::processor_count(int* count) const {
  if (is_running_machine()) {
    const long online = sysconf(_SC_NPROCESSORS_ONLN);
    if (online < 1 || online > std::numeric_limits<int>::max()) return false;
    *count = static_cast<int>(online);
    return true;
  }
  const auto listed = listed_processors(text_of("/sys/devices/system/cpu/online"));
  if (!listed) return false;
  *count = *listed;
  return true;
}

bool LinuxSystem::processor_texts(ProcessorTexts* texts) const {
  const CpuInfo info = read_cpu_info();
  KernelNames names;
  kernel_names(&names);
  ProcessorTexts read{std::move(names.machine), processor_model(info), clock_hz(info)};
  if (read.model.empty()) read.model = first_line(text_of("/proc/device-tree/model"));
  *texts = std::move(read);
  return true;
}

bool LinuxSystem::gestalt(uint32_t, int32_t*) const { return false; }

bool LinuxSystem::hardware_model(std::string*) const { return false; }

Chassis LinuxSystem::chassis() const {
  if (const auto type = number_in("/sys/class/dmi/id/chassis_type")) {
    return is_portable_chassis(*type) ? Chassis::portable : Chassis::stationary;
  }
  if (seen_hypervisor_ || read_cpu_info().hypervisor) return Chassis::stationary;
  const std::string kind = first_line(text_of("/proc/device-tree/chassis-type"));
  if (kind == "laptop" || kind == "tablet" || kind == "convertible" || kind == "handset") {
    return Chassis::portable;
  }
  if (!kind.empty()) return Chassis::stationary;
  if (const auto profile = number_in("/sys/firmware/acpi/pm_profile")) {
    return *profile == 2 || *profile == 8 ? Chassis::portable : Chassis::stationary;
  }
  return Chassis::unknown;
}

}  // namespace quillon_com::orb::platform
