// tests/contract/neighbour.cpp: a library whose static initialiser uses ours.
#include "tests/contract/neighbour.h"

#include "sysprops/catalogue.h"
#include "sysprops/records.h"

namespace {

namespace sysprops = quillon_com::orb::sysprops;

SeenAtLoad take_down() {
  SeenAtLoad seen;
  seen.platform_key = sysprops::PlatformId_Key;
  seen.portable_key = sysprops::CPUPortable_Key;
  seen.file_systems_key = sysprops::NumFileSystems_Key;
  seen.default_value = sysprops::DefaultProp_Val;
  seen.total_space = sysprops::FileSystemTotalSpace;
  seen.release_file = sysprops::redhat_release_file;
  seen.server_words = sysprops::server_strings;
  seen.last_known_ip = sysprops::ISysProps::GetLastKnownLocalIP();
  seen.serial_number = voxcomn_get_cpu_serial_number();
  seen.unclaimed = voxcomn_get_number_of_file_systems();
  sysprops::ISysProps().GetAllSystemProperties(seen.report);
  return seen;
}

const SeenAtLoad seen = take_down();

}  // namespace

const SeenAtLoad& seen_at_load() { return seen; }
