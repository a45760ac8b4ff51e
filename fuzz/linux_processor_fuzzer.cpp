// fuzz/linux_processor_fuzzer.cpp: the processor's own texts, beside plainer readers.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "fuzz/check.h"
#include "fuzz/plain_lines.h"
#include "platform/linux_cpuinfo.h"

using orbfuzz::check;
using orbfuzz::plain_count;
using orbfuzz::plain_parts;
using orbfuzz::plain_trimmed;
using namespace quillon_com::orb::platform;

namespace {

using Frequency = std::optional<uint64_t>;

// Digits, perhaps a point and more digits, perhaps a unit: the digits behind the point are filled
// up with zeros to those of one hertz, and what lies beyond a hertz is dropped.
Frequency plain_frequency(const std::string& whole_text) {
  const std::string text = plain_trimmed(whole_text);
  const size_t end = text.find_first_not_of("0123456789.");
  const std::string number = text.substr(0, end);
  const std::string unit = end == std::string::npos ? "" : plain_trimmed(text.substr(end));
  if (unit != "" && unit != "MHz" && unit != "GHz") return std::nullopt;
  const size_t places = unit == "GHz" ? 9 : 6;
  const size_t point = number.find('.');
  std::string fraction = point == std::string::npos ? "" : number.substr(point + 1);
  if (fraction.find('.') != std::string::npos || point == 0 || number.empty()) return std::nullopt;
  fraction.resize(places, '0');
  const std::string units = number.substr(0, point);
  const auto hertz = plain_count(units + fraction);
  // The last whole unit of 64 bits is left out, whatever stands behind its point.
  const auto above = plain_count(units + std::string(places, '9'));
  return hertz && above && *hertz != 0 && plain_count(units) ? hertz : std::nullopt;
}

std::optional<unsigned> plain_hexadecimal(const std::string& text) {
  const std::string digits = text.size() > 2 ? text.substr(2) : "";
  if (text.compare(0, 2, "0x") != 0 || digits.empty() || digits.size() > 8 ||
      digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
    return std::nullopt;
  return static_cast<unsigned>(std::strtoul(digits.c_str(), nullptr, 16));
}

CpuInfo plain_info(const std::string& text) {
  CpuInfo info;
  for (const std::string& each : plain_parts(text, '\n')) {
    const std::string line = each.c_str();  // ends at a zero byte
    const size_t colon = line.find(':');
    if (colon == std::string::npos) continue;
    const std::string name = plain_trimmed(line.substr(0, colon));
    const std::string value = plain_trimmed(line.substr(colon + 1));
    if (name == "model name" && info.model_name.empty()) info.model_name = value;
    if (name == "cpu" && info.cpu.empty()) info.cpu = value;
    if (name == "CPU implementer" && !info.implementer) info.implementer = plain_hexadecimal(value);
    if (name == "CPU part" && !info.part) info.part = plain_hexadecimal(value);
    if (name.compare(0, 7, "cpu MHz") == 0 && !info.clock_hz)
      info.clock_hz = plain_frequency(value);
    if (name == "flags") {
      for (const std::string& flag : plain_parts(value, ' '))
        if (flag == "hypervisor") info.hypervisor = true;
    }
    const size_t machine = value.find("machine = ");
    if (name.compare(0, 10, "processor ") == 0 && info.machine.empty() &&
        machine != std::string::npos)
      info.machine = plain_trimmed(plain_parts(value.substr(machine + 10), ',')[0]);
  }
  return info;
}

void check_info(const std::string& text) {
  const CpuInfo info = cpu_info(text);
  const CpuInfo plain = plain_info(text);
  check(info.model_name == plain.model_name && info.machine == plain.machine);
  check(info.cpu == plain.cpu && info.implementer == plain.implementer);
  check(info.part == plain.part && info.clock_hz == plain.clock_hz);
  check(info.hypervisor == plain.hypervisor);
  const std::string model = processor_model(info);
  if (!info.model_name.empty()) check(model == info.model_name);
  if (model.empty()) check(info.machine.empty() && info.cpu.empty());
}

// A device tree's number, byte by byte in the order of the network.
void check_tree_number(const std::string& bytes) {
  Frequency plain;
  if (bytes.size() == 4 || bytes.size() == 8) {
    plain = 0;
    for (const char byte : bytes) *plain = *plain * 256 + static_cast<unsigned char>(byte);
  }
  check(device_tree_number(bytes) == plain);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  check_info(text);
  check(frequency_hz(text) == plain_frequency(text));
  const size_t sign = text.rfind('@');
  const std::string clock = sign == std::string::npos ? "" : text.substr(sign + 1);
  check(clock_in_model(text) ==
        (clock.find("Hz") == std::string::npos ? std::nullopt : plain_frequency(clock)));
  check_tree_number(text);
  return 0;
}
