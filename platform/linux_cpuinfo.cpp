// platform/linux_cpuinfo.cpp: the processor's texts and the Arm cores by number.
#include "platform/linux_cpuinfo.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "platform/linux_text.h"

namespace quillon_com::orb::platform {
namespace {

struct ArmCore {
  unsigned implementer;
  unsigned part;
  std::string_view name;
};

// By implementer, then part, as the makers' manuals give the two fields of the main identification
// register.
constexpr ArmCore kArmCores[] = {
    // Arm
    {0x41, 0xb76, "ARM1176"},
    {0x41, 0xc05, "Cortex-A5"},
    {0x41, 0xc07, "Cortex-A7"},
    {0x41, 0xc08, "Cortex-A8"},
    {0x41, 0xc09, "Cortex-A9"},
    {0x41, 0xc0d, "Cortex-A17"},
    {0x41, 0xc0e, "Cortex-A17"},
    {0x41, 0xc0f, "Cortex-A15"},
    {0x41, 0xd01, "Cortex-A32"},
    {0x41, 0xd02, "Cortex-A34"},
    {0x41, 0xd03, "Cortex-A53"},
    {0x41, 0xd04, "Cortex-A35"},
    {0x41, 0xd05, "Cortex-A55"},
    {0x41, 0xd06, "Cortex-A65"},
    {0x41, 0xd07, "Cortex-A57"},
    {0x41, 0xd08, "Cortex-A72"},
    {0x41, 0xd09, "Cortex-A73"},
    {0x41, 0xd0a, "Cortex-A75"},
    {0x41, 0xd0b, "Cortex-A76"},
    {0x41, 0xd0c, "Neoverse-N1"},
    {0x41, 0xd0d, "Cortex-A77"},
    {0x41, 0xd0e, "Cortex-A76AE"},
    {0x41, 0xd40, "Neoverse-V1"},
    {0x41, 0xd41, "Cortex-A78"},
    {0x41, 0xd42, "Cortex-A78AE"},
    {0x41, 0xd43, "Cortex-A65AE"},
    {0x41, 0xd44, "Cortex-X1"},
    {0x41, 0xd46, "Cortex-A510"},
    {0x41, 0xd47, "Cortex-A710"},
    {0x41, 0xd48, "Cortex-X2"},
    {0x41, 0xd49, "Neoverse-N2"},
    {0x41, 0xd4a, "Neoverse-E1"},
    {0x41, 0xd4b, "Cortex-A78C"},
    {0x41, 0xd4c, "Cortex-X1C"},
    {0x41, 0xd4d, "Cortex-A715"},
    {0x41, 0xd4e, "Cortex-X3"},
    {0x41, 0xd4f, "Neoverse-V2"},
    {0x41, 0xd80, "Cortex-A520"},
    {0x41, 0xd81, "Cortex-A720"},
    {0x41, 0xd82, "Cortex-X4"},
    {0x41, 0xd83, "Neoverse-V3AE"},
    {0x41, 0xd84, "Neoverse-V3"},
    {0x41, 0xd85, "Cortex-X925"},
    {0x41, 0xd87, "Cortex-A725"},
    {0x41, 0xd8e, "Neoverse-N3"},
    // Broadcom, then Cavium and Marvell
    {0x42, 0x100, "Brahma-B53"},
    {0x42, 0x516, "ThunderX2"},
    {0x43, 0x0a1, "ThunderX"},
    {0x43, 0x0a2, "ThunderX-81XX"},
    {0x43, 0x0a3, "ThunderX-83XX"},
    {0x43, 0x0af, "ThunderX2"},
    {0x43, 0x0b8, "ThunderX3"},
    // Fujitsu, HiSilicon, NVIDIA, Applied Micro
    {0x46, 0x001, "A64FX"},
    {0x48, 0xd01, "Kunpeng-920"},
    {0x48, 0xd02, "Kunpeng-920B"},
    {0x4e, 0x000, "Denver"},
    {0x4e, 0x003, "Denver 2"},
    {0x4e, 0x004, "Carmel"},
    {0x50, 0x000, "X-Gene"},
    // Qualcomm
    {0x51, 0x001, "Oryon"},
    {0x51, 0x06f, "Krait"},
    {0x51, 0x201, "Kryo"},
    {0x51, 0x205, "Kryo"},
    {0x51, 0x211, "Kryo"},
    {0x51, 0x800, "Kryo 2xx Gold"},
    {0x51, 0x801, "Kryo 2xx Silver"},
    {0x51, 0x802, "Kryo 3xx Gold"},
    {0x51, 0x803, "Kryo 3xx Silver"},
    {0x51, 0x804, "Kryo 4xx Gold"},
    {0x51, 0x805, "Kryo 4xx Silver"},
    {0x51, 0xc00, "Falkor"},
    {0x51, 0xc01, "Saphira"},
    // Samsung
    {0x53, 0x001, "Exynos M1"},
    {0x53, 0x002, "Exynos M3"},
    {0x53, 0x003, "Exynos M4"},
    {0x53, 0x004, "Exynos M5"},
    // Apple
    {0x61, 0x022, "Apple M1"},
    {0x61, 0x023, "Apple M1"},
    {0x61, 0x024, "Apple M1 Pro"},
    {0x61, 0x025, "Apple M1 Pro"},
    {0x61, 0x028, "Apple M1 Max"},
    {0x61, 0x029, "Apple M1 Max"},
    {0x61, 0x032, "Apple M2"},
    {0x61, 0x033, "Apple M2"},
    {0x61, 0x034, "Apple M2 Pro"},
    {0x61, 0x035, "Apple M2 Pro"},
    {0x61, 0x038, "Apple M2 Max"},
    {0x61, 0x039, "Apple M2 Max"},
    // Microsoft, Phytium, Ampere
    {0x6d, 0xd49, "Azure Cobalt 100"},
    {0x70, 0x303, "FTC310"},
    {0x70, 0x660, "FTC660"},
    {0x70, 0x661, "FTC661"},
    {0x70, 0x662, "FTC662"},
    {0x70, 0x663, "FTC663"},
    {0x70, 0x862, "FTC862"},
    {0xc0, 0xac3, "Ampere-1"},
    {0xc0, 0xac4, "Ampere-1A"},
    {0xc0, 0xac5, "Ampere-1B"},
};

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// "0x41"; at most eight digits.
std::optional<unsigned> hexadecimal(std::string_view text) {
  if (text.substr(0, 2) != "0x" || text.size() < 3 || text.size() > 10) return std::nullopt;
  unsigned number = 0;
  for (char c : text.substr(2)) {
    const char lower = static_cast<char>(c | 0x20);
    if (is_digit(c)) {
      number = number * 16 + static_cast<unsigned>(c - '0');
    } else if (lower >= 'a' && lower <= 'f') {
      number = number * 16 + static_cast<unsigned>(lower - 'a' + 10);
    } else {
      return std::nullopt;
    }
  }
  return number;
}

bool holds_word(std::string_view text, std::string_view word) {
  while (!text.empty()) {
    const size_t end = text.find(' ');
    if (text.substr(0, end) == word) return true;
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return false;
}

// "version = FF,  identification = 012345,  machine = 8561"
std::string s390_machine(std::string_view text) {
  constexpr std::string_view kName = "machine = ";
  const size_t begin = text.find(kName);
  if (begin == std::string_view::npos) return "";
  text.remove_prefix(begin + kName.size());
  return std::string(trimmed(text.substr(0, text.find(','))));
}

template <class T>
void set_once(std::optional<T>* fact, std::optional<T> value) {
  if (!*fact) *fact = value;
}

void set_once(std::string* fact, std::string_view value) {
  if (fact->empty()) *fact = value;
}

void read_line(std::string_view name, std::string_view value, CpuInfo* info) {
  if (name == "model name") {
    set_once(&info->model_name, value);
  } else if (name == "cpu") {
    set_once(&info->cpu, value);
  } else if (name == "CPU implementer") {
    set_once(&info->implementer, hexadecimal(value));
  } else if (name == "CPU part") {
    set_once(&info->part, hexadecimal(value));
  } else if (name.substr(0, 7) == "cpu MHz") {
    set_once(&info->clock_hz, frequency_hz(value));
  } else if (name == "flags") {
    info->hypervisor = info->hypervisor || holds_word(value, "hypervisor");
  } else if (name.substr(0, 10) == "processor ") {
    set_once(&info->machine, s390_machine(value));
  }
}

}  // namespace

CpuInfo cpu_info(std::string_view text) {
  CpuInfo info;
  while (!text.empty()) {
    std::string_view line = take_line(&text);
    line = line.substr(0, line.find('\0'));
    const size_t colon = line.find(':');
    if (colon == std::string_view::npos) continue;
    read_line(trimmed(line.substr(0, colon)), trimmed(line.substr(colon + 1)), &info);
  }
  return info;
}

std::string_view arm_core_name(unsigned implementer, unsigned part) {
  const auto found = std::find_if(std::begin(kArmCores), std::end(kArmCores), [&](const auto& c) {
    return c.implementer == implementer && c.part == part;
  });
  return found == std::end(kArmCores) ? std::string_view() : found->name;
}

std::string processor_model(const CpuInfo& info) {
  if (!info.model_name.empty()) return info.model_name;
  if (!info.machine.empty()) return info.machine;
  if (!info.cpu.empty()) return info.cpu;
  if (!info.implementer || !info.part) return "";
  return std::string(arm_core_name(*info.implementer, *info.part));
}

std::optional<uint64_t> frequency_hz(std::string_view text) {
  text = trimmed(text);
  size_t end = 0;
  while (end < text.size() && (is_digit(text[end]) || text[end] == '.')) ++end;
  const std::string_view unit = trimmed(text.substr(end));
  const std::string_view number = text.substr(0, end);
  uint64_t unit_hz = 1'000'000;
  if (unit == "GHz") {
    unit_hz = 1'000'000'000;
  } else if (unit != "MHz" && !unit.empty()) {
    return std::nullopt;
  }
  const size_t point = number.find('.');
  const auto whole = decimal_count(number.substr(0, point));
  if (!whole || *whole > std::numeric_limits<uint64_t>::max() / unit_hz - 1) return std::nullopt;
  uint64_t hz = *whole * unit_hz;
  if (point != std::string_view::npos) {
    for (char c : number.substr(point + 1)) {
      if (!is_digit(c)) return std::nullopt;
      unit_hz /= 10;
      hz += static_cast<uint64_t>(c - '0') * unit_hz;
    }
  }
  return hz == 0 ? std::nullopt : std::optional<uint64_t>(hz);
}

std::optional<uint64_t> clock_in_model(std::string_view model_name) {
  const size_t sign = model_name.rfind('@');
  if (sign == std::string_view::npos) return std::nullopt;
  const std::string_view clock = model_name.substr(sign + 1);
  return clock.find("Hz") == std::string_view::npos ? std::nullopt : frequency_hz(clock);
}

std::optional<uint64_t> device_tree_number(std::string_view bytes) {
  if (bytes.size() != 4 && bytes.size() != 8) return std::nullopt;
  uint64_t number = 0;
  for (char c : bytes) number = number << 8 | static_cast<unsigned char>(c);
  return number;
}

bool is_portable_chassis(uint64_t dmi_type) {
  constexpr uint64_t kPortable[] = {8, 9, 10, 11, 14, 30, 31, 32};
  return std::find(std::begin(kPortable), std::end(kPortable), dmi_type) != std::end(kPortable);
}

}  // namespace quillon_com::orb::platform
