// fileutil/machine.h: names and identifiers of a given machine and version; what
// fileutil/platformmatch.h runs on the host.
#pragma once

#include <cstdint>
#include <cstdio>

#include "fileutil/platformmatch.h"

namespace quillon_com::orb::platform {
class System;
}

namespace quillon_com::orb {

// The numbers of a release of the library, one decimal digit each.
struct Version {
  int major_number;
  int minor_number;
  int patch_number;
};

// The functions of fileutil/platformmatch.h with the same rules, for `version` or on `system`,
// which is read and never kept; the user collector's diagnostic lines go to `lines`.
void software_id(const Version& version, char* out, unsigned size);
void software_id(const Version& version, wchar_t* out, unsigned size);
int computer_name(const platform::System& system, char* out, unsigned long* size);
uint32_t user_name(const platform::System& system, FILE* lines, char* out, unsigned size);

}  // namespace quillon_com::orb
