// sysprops/cpu.cpp: processor count, clock and names, and whether the machine is a portable.
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

#include "portability/outofmemory.h"
#include "sysprops/collect.h"
#include "sysprops/collectors.h"

namespace quillon_com::orb::sysprops {

namespace {

constexpr uint32_t kClockSelector = 0x70636C6B;         // 'pclk'
constexpr uint32_t kArchitectureSelector = 0x73797361;  // 'sysa'
constexpr uint32_t kProcessorSelector = 0x63707574;     // 'cput'
constexpr uint64_t kMegahertz = 1000000;

// Narrow texts of the record's processor fields; an unknown name is empty.
struct Processor {
  std::string architecture;
  std::string model;
  std::optional<uint64_t> clock_mhz;
};

Processor from_texts(const platform::ProcessorTexts& texts) {
  Processor processor{texts.architecture, texts.model, std::nullopt};
  // A clock below one megahertz is a misreading, not a figure to report.
  if (texts.clock_hz && *texts.clock_hz >= kMegahertz)
    processor.clock_mhz = *texts.clock_hz / kMegahertz;
  return processor;
}

Processor from_selectors(const platform::System& system) {
  Processor processor;
  char name[16];
  int32_t response = 0;
  bool answered = system.gestalt(kClockSelector, &response);
  processor.clock_mhz = static_cast<uint32_t>(response) / kMegahertz;  // a count of 32 bits
  answered |= system.gestalt(kArchitectureSelector, &response);        // not reset: see the member
  if (ConvertGestaltSysArchToString(response, name)) processor.architecture = name;
  response = 0;
  answered |= system.gestalt(kProcessorSelector, &response);
  if (answered && ConvertGestaltCPUTypeToString(response, name)) processor.model = name;
  return processor;
}

std::string portable_text(const platform::System& system) {
  bool portable = false;
  if (!portable_computer(system, portable)) return "-1";
  return portable ? "1" : "0";
}

}  // namespace

bool collect_cpu(const platform::System& system, CPUInformation& record, Fields fields) {
  int count = 0;
  if ((fields & kCpuCount) != 0 && system.processor_count(&count))
    record.numOfCPU = sysprops_ansi_to_wide(std::to_string(count));
  if ((fields & (kCpuSpeed | kCpuType | kCpuPortable)) == 0) return true;

  platform::ProcessorTexts texts;
  const Processor processor =
      system.processor_texts(&texts) ? from_texts(texts) : from_selectors(system);
  if (processor.clock_mhz)
    record.cpuSpeed = sysprops_ansi_to_wide(std::to_string(*processor.clock_mhz) + " MHz");

  const bool both = !processor.architecture.empty() && !processor.model.empty();
  record.cpuType =
      sysprops_ansi_to_wide(processor.architecture + (both ? " " : "") + processor.model);
  if (processor.architecture.empty() && processor.model.empty()) return false;

  if ((fields & kCpuPortable) != 0)
    record.isPortable = sysprops_ansi_to_wide(portable_text(system));
  return true;
}

bool portable_computer(const platform::System& system, bool& portable) {
  portable = false;
  switch (system.chassis()) {
    case platform::Chassis::portable:
      portable = true;
      return true;
    case platform::Chassis::stationary:
      return true;
    case platform::Chassis::unknown:
      return false;
    case platform::Chassis::not_stated:
      break;
  }
  std::string model;
  if (!system.hardware_model(&model)) return false;
  model.erase(std::min(model.find('\0'), model.size()));
  for (char& c : model)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  portable = model.find("book") != std::string::npos;
  return true;
}

bool IsPortableComputer(bool& portable) {
  return portability::unless_out_of_memory(
      false, [&] { return portable_computer(platform::host(), portable); });
}

bool ISysProps::GetCPUInformation(CPUInformation& record) {
  return collect_cpu(platform::host(), record);
}

}  // namespace quillon_com::orb::sysprops
