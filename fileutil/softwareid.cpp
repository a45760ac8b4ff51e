// fileutil/softwareid.cpp: the identifier of this software.
#include <algorithm>
#include <cstring>

#include "fileutil/machine.h"

namespace quillon_com::orb {
namespace {

constexpr Version kVersion{ORB_VERSION_MAJOR, ORB_VERSION_MINOR, ORB_VERSION_PATCH};
static_assert(kVersion.major_number < 10 && kVersion.minor_number < 10 &&
                  kVersion.patch_number < 10,
              "the identifier has one digit for each number");

constexpr size_t kLength = 16;

// `id` receives the identifier and its terminator.
void make_id(const Version& version, char (&id)[kLength + 1]) {
  const auto digit = [](int number) { return static_cast<char>('0' + number); };
  const char digits[] = {digit(version.major_number), digit(version.minor_number),
                         digit(version.patch_number), '0'};
  char* end = std::copy_n("HUBAGENT", 8, id);
  end = std::copy_n(digits, sizeof digits, end);
  std::copy_n("MACX", 5, end);
}

}  // namespace

void software_id(const Version& version, char* out, unsigned size) {
  if (out == nullptr || size <= kLength) return;
  char id[kLength + 1];
  make_id(version, id);
  strncpy(out, id, size - 1);
}

void software_id(const Version& version, wchar_t* out, unsigned size) {
  if (out == nullptr || size <= kLength) return;
  char id[kLength + 1];
  make_id(version, id);
  std::copy_n(id, kLength + 1, out);
}

}  // namespace quillon_com::orb

namespace orb = quillon_com::orb;

void voxcomn_get_agent_softwareid(char* out, unsigned size) {
  orb::software_id(orb::kVersion, out, size);
}

void voxcomn_get_agent_softwareid_W(wchar_t* out, unsigned size) {
  orb::software_id(orb::kVersion, out, size);
}
