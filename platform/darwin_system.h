// platform/darwin_system.h: the running Mac, as the seam asks for it.
#pragma once

#include <string>
#include <vector>

#include "platform/posix_system.h"

namespace quillon_com::orb::platform {

// Adds to what POSIX answers the facts of macOS: its lists of interfaces and volumes, sysctl, the
// kernel's statistics, Gestalt and property lists. Holds no state; every buffer and every port is
// given back before a function returns.
class DarwinSystem : public PosixSystem {
 public:
  // The six bytes of a link-layer entry start after the interface name that the address holds; what
  // lies behind the address's own end counts as zero.
  bool interface_entries(std::vector<InterfaceEntry>* entries) const override;

  bool official_host_name(const std::string& name, std::string* official) const override;
  bool kernel_domain(std::string* domain) const override;

  bool boot_time(time_t* seconds) const override;

  // XML and binary lists alike. A text of 256 bytes or more in UTF-8 counts as absent. False also
  // when the system cannot make the text of a key.
  bool property_list_texts(const std::string& bytes, const std::vector<std::string>& keys,
                           std::vector<std::optional<std::string>>* texts) const override;
  bool release_texts(ReleaseTexts* texts) const override;  // false: lists are its identification

  bool processor_count(int* count) const override;             // those that this boot can use
  bool processor_texts(ProcessorTexts* texts) const override;  // false: Gestalt answers
  bool gestalt(uint32_t selector, int32_t* response) const override;
  bool hardware_model(std::string* model) const override;
  Chassis chassis() const override;  // not stated

  bool total_memory(uint64_t* bytes) const override;  // installed
  bool free_memory(uint64_t* pages, uint64_t* page_size) const override;
  // With the figures that the system has at hand: no volume is asked and none can block. A volume
  // mounted or unmounted meanwhile may be missing, never invented.
  std::vector<Volume> volumes() const override;
};

}  // namespace quillon_com::orb::platform
