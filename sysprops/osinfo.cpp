// sysprops/osinfo.cpp: the operating system by its version list, or else by its release files.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "portability/outofmemory.h"
#include "sysprops/collect.h"
#include "sysprops/releaseinfo.h"

namespace quillon_com::orb::sysprops {

namespace {

constexpr char kCompatibilityList[] = "/System/Library/CoreServices/SystemVersionCompat.plist";
constexpr char kVersionList[] = "/System/Library/CoreServices/SystemVersion.plist";
constexpr uint64_t kLargestList = 16 << 20;  // bytes; a real list has some hundred
constexpr size_t kProductName = 30;          // bytes of the product tools' output
constexpr size_t kBitFigure = 4;             // bytes of the system-control tool's output

// What the C library's atoi gives, defined for every text.
int leading_number(const char* text) { return static_cast<int>(strtol(text, nullptr, 10)); }

bool holds_server(const std::string& output) {
  const std::string text = output.substr(0, output.find('\0'));
  const std::string word = "server";
  return std::search(text.begin(), text.end(), word.begin(), word.end(), [](char a, char b) {
           return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b;
         }) != text.end();
}

// The one buffer through which the texts of a version list pass. The version is split in place; the
// build then overwrites it, while `major` and `minor` still point to where the version had them.
class VersionBuffer {
 public:
  void store(const std::optional<std::string>& text) {
    const bool fits = text && text->size() < sizeof bytes_;
    if (fits) memcpy(bytes_, text->data(), text->size());
    bytes_[fits ? text->size() : 0] = '\0';
  }
  void split() {
    char* rest = nullptr;
    major_ = strtok_r(bytes_, ".", &rest);
    minor_ = major_ == nullptr ? nullptr : strtok_r(nullptr, ".", &rest);
    patch_ = minor_ == nullptr ? nullptr : strtok_r(nullptr, ".", &rest);
  }
  const char* text() const { return bytes_; }
  const char* major_part() const { return major_; }  // null when there is none, as the next two
  const char* minor_part() const { return minor_; }
  const char* patch_part() const { return patch_; }

 private:
  char bytes_[256] = {};  // the last byte is never anything but zero
  char* major_ = nullptr;
  char* minor_ = nullptr;
  char* patch_ = nullptr;
};

// The bytes of the list: its size by the first list that has one, its bytes by the first that can
// be opened, padded with zeros to that size.
bool read_list(const platform::System& system, std::string* bytes) {
  uint64_t size = 0;
  if (!system.file_size(kCompatibilityList, &size)) size = 0;
  if (size == 0 && !system.file_size(kVersionList, &size)) return false;
  if (size == 0 || size > kLargestList) return false;
  if (!system.file_bytes(kCompatibilityList, size, bytes) &&
      !system.file_bytes(kVersionList, size, bytes))
    return false;
  bytes->resize(size);
  return bytes->front() != '\0';
}

void write_version(const VersionBuffer& version, OSInformation& record) {
  std::wstring text;
  if (version.major_part() != nullptr) text = sysprops_ansi_to_wide(version.major_part());
  if (version.minor_part() != nullptr) text += L"." + sysprops_ansi_to_wide(version.minor_part());
  if (version.patch_part() != nullptr) {
    record.osCsdVersion = sysprops_ansi_to_wide(version.patch_part());
    text += L"." + record.osCsdVersion;
  }
  record.osVersion = text;
}

bool is_server(const platform::System& system, const VersionBuffer& version) {
  const int major = version.major_part() == nullptr ? 0 : leading_number(version.major_part());
  if (major < 10) return false;
  const int minor = version.minor_part() == nullptr ? 0 : leading_number(version.minor_part());
  std::string output;
  return system.command_output(minor < 8 ? "sw_vers -productName" : "serverinfo --productname",
                               kProductName, &output) &&
         holds_server(output);
}

std::wstring bit_mode(const platform::System& system) {
  platform::KernelNames names;
  const std::string machine = system.kernel_names(&names) ? names.machine : "";
  if (machine.find("_64") != std::string::npos) return L"1";
  if (machine.find("86") != std::string::npos) return L"0";
  std::string output;
  if (!system.command_output("sysctl hw | grep 64bit | awk '{ print $2 }'", kBitFigure, &output))
    return L"-1";
  return leading_number(output.c_str()) != 0 ? L"1" : L"0";
}

bool from_version_list(const platform::System& system, OSInformation& record, Fields fields) {
  record.platformId = platform_mac;
  record.osType = os_mac;
  record.osOemId = os_mac_oemid;

  std::string bytes;
  std::vector<std::optional<std::string>> texts;
  if (!read_list(system, &bytes)) return false;
  if (!system.property_list_texts(bytes, {"ProductVersion"}, &texts)) return false;
  VersionBuffer version;
  version.store(texts[0]);
  version.split();
  write_version(version, record);
  if (!system.property_list_texts(bytes, {"ProductBuildVersion"}, &texts)) return false;
  version.store(texts[0]);
  record.osBuildNum = sysprops_ansi_to_wide(version.text());

  if ((fields & kOsPlatform) != 0)
    record.osPlatform = is_server(system, version) ? p_server : p_workstation;
  if ((fields & kOsBitMode) != 0) record.osBitMode = bit_mode(system);
  return true;
}

// Writes `text`, unless it is empty: nothing told it then.
void write_known(const std::string& text, std::wstring* field) {
  if (!text.empty()) *field = sysprops_ansi_to_wide(text);
}

bool from_release_files(const platform::System& system, const platform::ReleaseTexts& texts,
                        OSInformation& record) {
  platform::KernelNames kernel;
  const bool named = system.kernel_names(&kernel);
  const std::string version = release_version(texts, kernel.release);
  const std::string patch = release_patch(texts, version);
  const std::string name = release_name(texts);

  record.platformId = platform_linux;
  record.osType = os_linux;
  record.osOemId = name.empty() ? unknown : sysprops_ansi_to_wide(name);
  write_known(version, &record.osVersion);
  write_known(patch, &record.osCsdVersion);
  write_known(kernel.release, &record.osBuildNum);
  record.osPlatform = release_is_server(texts) ? p_server : p_workstation;
  record.osBitMode = sysprops_ansi_to_wide(named ? release_bit_mode(kernel.machine) : "-1");
  return true;
}

}  // namespace

bool collect_os(const platform::System& system, OSInformation& record, Fields fields) {
  return portability::unless_out_of_memory(false, [&] {
    platform::ReleaseTexts texts;
    if (system.release_texts(&texts)) return from_release_files(system, texts, record);
    return from_version_list(system, record, fields);
  });
}

bool ISysProps::GetOSInformation(OSInformation& record) {
  return collect_os(platform::host(), record);
}

}  // namespace quillon_com::orb::sysprops
