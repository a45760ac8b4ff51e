// platform/linux_cpuinfo.h: what the processor's own texts say; pure functions.
//
// The texts may be empty, cut short anywhere, hold zero bytes or be no such text at all. Work and
// memory grow linearly with their length. Safe from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillon_com::orb::platform {

// The facts of /proc/cpuinfo's first processor; what no line states stays empty.
struct CpuInfo {
  std::string model_name;               // x86; also 32-bit Arm
  std::string machine;                  // s390: the number after "machine = "
  std::string cpu;                      // POWER
  std::optional<unsigned> implementer;  // Arm
  std::optional<unsigned> part;         // Arm
  std::optional<uint64_t> clock_hz;     // the first "cpu MHz"
  bool hypervisor = false;              // the flag of a virtual machine's x86 processor
};

// Reads the text's first lines; the first line that states a fact counts.
CpuInfo cpu_info(std::string_view text);

// The name of the Arm core that `implementer` builds as `part`; empty when it is not known.
std::string_view arm_core_name(unsigned implementer, unsigned part);

// The processor's model: the model name, else the s390 machine, else the POWER cpu, else the Arm
// core's name; empty when none is known.
std::string processor_model(const CpuInfo& info);

// A frequency like "2.50GHz", "800 MHz" or, without a unit, megahertz "2596.138"; nothing when it
// is malformed, zero or passes 64 bits.
std::optional<uint64_t> frequency_hz(std::string_view text);

// The frequency after the "@" of a model name.
std::optional<uint64_t> clock_in_model(std::string_view model_name);

// A device tree's number: four or eight bytes, the highest first; nothing for any other length.
std::optional<uint64_t> device_tree_number(std::string_view bytes);

// Whether a DMI chassis number belongs to a machine that is carried about.
bool is_portable_chassis(uint64_t dmi_type);

}  // namespace quillon_com::orb::platform
