// tests/support/scoped_local_ip.h: the last known local address for one scope.
#pragma once

#include <string>

#include "sysprops/records.h"

namespace orbtest {

class ScopedLocalIp {
 public:
  explicit ScopedLocalIp(const std::wstring& address)
      : before_(quillon_com::orb::sysprops::ISysProps::GetLastKnownLocalIP()) {
    quillon_com::orb::sysprops::ISysProps::updateLocalIP(address);
  }
  ~ScopedLocalIp() { quillon_com::orb::sysprops::ISysProps::updateLocalIP(before_); }
  ScopedLocalIp(const ScopedLocalIp&) = delete;
  ScopedLocalIp& operator=(const ScopedLocalIp&) = delete;

 private:
  std::wstring before_;
};

}  // namespace orbtest
