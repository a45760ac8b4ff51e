// network/ipaddress.h: one address of a network interface, as text.
#pragma once

#include <cstdint>
#include <string>

#include "platform/export.h"

namespace quillon_com::orb::network {
class InterfaceSearch;
}

// Selects a field of IPAddress; the values are fixed.
enum IP_PARAM {
  IP_ADDRESS = 0,      // ipAddress; string form
  IP_FAMILY = 1,       // ipFamily; unsigned form
  IP_SUBNET_MASK = 2,  // subNetMask; string form
  IP_SUBNET_ADDR = 3,  // subNetAddr; string form
};

// A plain value: copies are independent, nothing that is set is checked. A copy of the object or of
// a field throws std::bad_alloc when memory runs out, and then leaves the object as it was; no call
// fails otherwise. Objects carry no lock; callers that share one between threads serialise
// themselves.
class ORB_EXPORT IPAddress {
 public:
  // Empty texts, family 0.
  IPAddress();
  IPAddress(const IPAddress& other);
  IPAddress& operator=(const IPAddress& other);
  ~IPAddress();

  // Each returns a copy of the field.
  std::string getIPAddress() const;
  std::string getSubNetMask() const;
  std::string getSubNetAddr() const;
  // The host's AF_INET or AF_INET6 when enumeration made the record; 0 when nobody set it.
  uint32_t getIPFamily() const;

  // Assigns `value` to the text field that `param` names.
  // Quirk: any other member, IP_FAMILY included, is silently ignored.
  void setOption(IP_PARAM param, std::string value);
  // Assigns `value` to the family.
  // Quirk: any member but IP_FAMILY is silently ignored.
  void setOption(IP_PARAM param, unsigned int value);

 private:
  friend class quillon_com::orb::network::InterfaceSearch;

  std::string ipAddress;   // dotted quad, or eight IPv6 groups without a zone
  std::string subNetMask;  // in the same form
  std::string subNetAddr;  // address AND mask, in the same form
  uint32_t ipFamily;       // the host's AF_INET or AF_INET6
};
