// tests/contract/neighbour.cpp: a library whose static initialiser uses ours.
#include "tests/contract/neighbour.h"

#include "config/configkeys.h"
#include "sysprops/catalogue.h"
#include "sysprops/records.h"

namespace {

namespace orb = quillon_com::orb;
namespace sysprops = orb::sysprops;

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
  seen.policy_section = orb::section_sitelist;
  seen.policy_key = orb::key_ls_bListenToHUBServerOnly;
  seen.loose_key = orb::key_count_relay_max_connections_exceeded;
  seen.product_key = orb::props_loggedon_user;
  seen.task_root = orb::TaskRoot;
  seen.task_section = orb::DependenciesSection;
  seen.task_key = orb::DeleteWhenFinishedKey;
  seen.schedule_key = orb::GMT_Key;
  return seen;
}

const SeenAtLoad seen = take_down();

}  // namespace

const SeenAtLoad& seen_at_load() { return seen; }
