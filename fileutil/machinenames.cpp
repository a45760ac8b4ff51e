// fileutil/machinenames.cpp: the machine's name, its users, and its Windows-style folders.
#include <algorithm>
#include <cstring>
#include <exception>
#include <string>
#include <string_view>

#include "fileutil/machine.h"
#include "platform/system.h"
#include "session/collect.h"
#include "session/loggedonusers.h"

namespace quillon_com::orb {
namespace {

constexpr uint32_t kFailure = 0x80000008;

unsigned write_folder(std::string_view path, char* out, unsigned size) {
  const auto length = static_cast<unsigned>(path.size());
  if (out == nullptr || size <= length) return length + 1;
  std::fill(std::copy(path.begin(), path.end(), out), out + size, '\0');
  return length;
}

}  // namespace

int computer_name(const platform::System& system, char* out, unsigned long* size) {
  platform::KernelNames names;
  if (out == nullptr || size == nullptr || !system.kernel_names(&names)) return 0;
  const size_t length = names.node.size();
  if (*size <= length) return 0;
  std::copy_n(names.node.c_str(), length + 1, out);
  *size = length;
  return 1;
}

uint32_t user_name(const platform::System& system, FILE* lines, char* out, unsigned size) {
  if (out == nullptr) return kFailure;
  std::string users;
  session::collect_all_users(system, lines, &users);
  if (users.empty()) users = "NA";
  if (size <= users.size()) return kFailure;
  std::copy_n(users.c_str(), users.size() + 1, out);
  return 0;
}

}  // namespace quillon_com::orb

namespace orb = quillon_com::orb;

uint32_t voxcomn_get_user_name(char* out, unsigned size) {
  try {
    return orb::user_name(orb::platform::host(), orb::session::myfd(), out, size);
  } catch (const std::exception&) {
    return orb::kFailure;
  }
}

int voxGetComputerName(char* out, unsigned long* size) {
  try {
    return orb::computer_name(orb::platform::host(), out, size);
  } catch (const std::exception&) {
    return 0;
  }
}

unsigned voxGetWindowsDirectory(char* out, unsigned size) {
  return orb::write_folder("/Library", out, size);
}

unsigned voxGetSystemDirectory(char* out, unsigned size) {
  return orb::write_folder("/usr", out, size);
}

unsigned voxGetModuleFileName(void*, char*, unsigned) { return 0; }

int voxGetFileVersionInfo(const void*, ...) { return 0; }

int voxVerQueryValue(const void*, ...) { return 0; }
