// network/hostnames.h: domain and full host name of a machine, from at most one look-up.
#pragma once

#include <optional>
#include <string>

namespace quillon_com::orb::platform {
class System;
}

namespace quillon_com::orb::network {

// The names of one machine at one time. Host name and official name are asked of the machine when
// first needed, and once: both names together wait for one look-up at most. Lives no longer than
// the System that it was made with; for one thread.
class HostNames {
 public:
  explicit HostNames(const platform::System& system);

  // As getDomainName and getFqdnAddress of network/networkutil.h.
  std::wstring domain_name();
  std::wstring fqdn();

 private:
  const std::optional<std::string>& host_name();
  const std::optional<std::string>& official_name();  // only with a host name

  const platform::System& system_;
  bool host_asked_ = false;
  bool official_asked_ = false;
  std::optional<std::string> host_;      // absent when it cannot be read
  std::optional<std::string> official_;  // absent when the host name does not resolve
};

}  // namespace quillon_com::orb::network
