// fuzz/linux_text_fuzzer.cpp: every parser of Linux texts, beside plainer ones.
#include "platform/linux_text.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>

#include "fuzz/check.h"
#include "platform/linux_cpuinfo.h"
#include "platform/linux_mounts.h"

using orbfuzz::check;
using namespace quillon_com::orb::platform;

namespace {

constexpr char kDigits[] = "0123456789";

std::optional<uint64_t> plain_count(std::string text) {
  while (!text.empty() && std::string(" \t\r\n").find(text.back()) != std::string::npos) {
    text.pop_back();
  }
  text.erase(0, text.find_first_not_of(" \t\r\n"));
  if (text.empty() || text.find_first_not_of(kDigits) != std::string::npos) return std::nullopt;
  errno = 0;
  const unsigned long long count = strtoull(text.c_str(), nullptr, 10);
  return errno == 0 ? std::optional<uint64_t>(count) : std::nullopt;
}

void check_texts(const std::string& text) {
  check(decimal_count(text) == plain_count(text));
  const auto memory = memory_kilobytes(text, "MemFree");
  check(!memory || *memory <= UINT64_MAX / 1024);
  boot_seconds(text);
  const auto processors = listed_processors(text);
  check(!processors || *processors >= 1);
  const std::string line = first_line(text);
  check(line.find('\0') == std::string::npos && line.find('\n') == std::string::npos);
  check(words_before_release(text).size() <= line.size());
  size_t length = 0;
  for (const auto& [name, value] : settings_of(text)) {
    check(name.find_first_of("= \t\n") == std::string::npos && !name.empty());
    check(value.find('\n') == std::string::npos);
    length += name.size() + value.size() + 1;
  }
  check(length <= text.size());
  const auto session = session_of("1", text);
  check(!session || session->type == 7);
}

void check_processor(const std::string& text) {
  const CpuInfo info = cpu_info(text);
  check(!info.clock_hz || *info.clock_hz != 0);
  check(info.model_name.find('\n') == std::string::npos);
  processor_model(info);
  const auto clock = frequency_hz(text);
  check(!clock || *clock != 0);
  clock_in_model(text);
  const auto number = device_tree_number(text);
  check(number.has_value() == (text.size() == 4 || text.size() == 8));
}

void check_mounts(const std::string& text) {
  std::set<std::string> points;
  const auto mounts = mounts_of(text);
  size_t storage = 0;
  for (const Mount& mount : mounts) {
    check(mount.point.front() == '/' && mount.point.find('\0') == std::string::npos);
    check(points.insert(mount.point).second);
    check(!mount.type.empty());
    check(!is_remote(mount) || !is_storage(mount));
    storage += is_storage(mount);
  }
  size_t grouped = 0;
  for (const auto& group : storage_groups(mounts)) {
    check(!group.empty());
    for (const Mount& mount : group) check(is_storage(mount));
    for (const Mount& mount : group) check(group[0].root == "/" || mount.root != "/");
    grouped += group.size();
  }
  check(grouped == storage);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  check_texts(text);
  check_processor(text);
  check_mounts(text);
  return 0;
}
