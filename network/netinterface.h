// network/netinterface.h: the machine's network interfaces, and the searches over them.
#pragma once

#include <sys/socket.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "network/ipaddress.h"
#include "platform/export.h"

namespace quillon_com::orb::network {
class InterfaceSearch;
class InterfaceWalk;
}  // namespace quillon_com::orb::network

// Selects a field of NetInterface; the values are fixed.
enum NETINTERFACE_PARAM {
  NETIF_MAC_ADDRESS = 0,  // macAddress; string form
  NETIF_INDEX_NAME = 1,   // indexName; string form
  NETIF_INDEX = 2,        // index; unsigned form
  NETIF_IP_ADDRESS = 3,   // ipAddresses, which grows; IPAddress form
  NETIF_SORT_LAST = 4,    // sortLast; unsigned form
};

// One interface. A plain value: copies are independent and whole, nothing that is set is checked.
// A copy of the object or of a field throws std::bad_alloc when memory runs out, and then leaves
// the object as it was; no call fails otherwise. Objects carry no lock; callers that share one
// serialise themselves.
class ORB_EXPORT NetInterface {
 public:
  // Index 0, empty texts, no addresses, not sorted last.
  NetInterface();
  NetInterface(const NetInterface& other);
  NetInterface& operator=(const NetInterface& other);
  ~NetInterface();

  // Each returns a copy of the field.
  uint32_t getIndex() const;
  std::string getIndexName() const;
  std::string getMACAddress() const;
  // A copy of all addresses, in the order in which they were added.
  std::vector<IPAddress> getIPAddress() const;
  bool getSortLast() const;

  // Assigns `value` to the hardware address or the name. Other members are silently ignored.
  void setOption(NETINTERFACE_PARAM param, std::string value);
  // NETIF_INDEX stores `value`, NETIF_SORT_LAST whether it is not 0. Other members are silently
  // ignored.
  void setOption(NETINTERFACE_PARAM param, unsigned int value);
  // NETIF_IP_ADDRESS adds a copy of `value` behind the addresses there are. Other members are
  // silently ignored.
  // Quirk: an address that is there already is added again.
  void setOption(NETINTERFACE_PARAM param, const IPAddress& value);

 private:
  friend class quillon_com::orb::network::InterfaceSearch;

  uint32_t index;                      // the system's; 0 when unknown
  std::string macAddress;              // twelve lower-case hexadecimal digits
  std::string indexName;               // "eth0"
  std::vector<IPAddress> ipAddresses;  // IPv4 and IPv6 mixed, in the system's order
  bool sortLast;                       // getIndexes lists it behind the others
};

// A snapshot of the interfaces that are up, have a hardware address and at least one IPv4 or IPv6
// address. Lists carry no lock; different lists may be filled by different threads at once. A copy,
// getIndexes and the reference of a new record throw std::bad_alloc when memory runs out, and then
// leave the list as it was.
class ORB_EXPORT NetInterfaceList {
 public:
  // An empty list. Interfaces flagged as loopback are left out unless `includeLoopback`.
  explicit NetInterfaceList(bool includeLoopback);
  NetInterfaceList(const NetInterfaceList& other);
  NetInterfaceList& operator=(const NetInterfaceList& other);
  ~NetInterfaceList();

  // Adds every address that the system lists now and that passes all of these, in the system's
  // order: its interface is up and, unless loopback was asked for, no loopback; it is IPv4 or IPv6
  // and has a numeric text; a socket of its family can be opened; its interface has a link-layer
  // entry; it has a mask. An address that fails one is skipped silently. IPv6 texts are expanded to
  // eight groups without a zone. Returns whether at least one address was added by this call;
  // false also when the system's list cannot be read or memory runs out: the list is then as it
  // was. Stores no error word.
  // Quirk: nothing is cleared first: a second call adds every address a second time.
  // Quirk: an interface that is gone before its index is asked is filed under index 0.
  bool initialize();

  // The indexes of all interfaces: those not sorted last in ascending order, then those sorted
  // last in ascending order.
  std::vector<int> getIndexes() const;

  // The record of `index`, which lives as long as the list and may be changed through the
  // reference.
  // Quirk: an index that the list does not hold is added with an empty record, whose own index
  // reads 0; getIndexes lists it from then on.
  NetInterface& getNetInterface(const unsigned int& index);
  // Copies the record of `index` into `out`. Returns false, `out` untouched, when there is none or
  // no memory for the copy.
  bool getNetInterface(unsigned int index, NetInterface& out) const;

 private:
  friend class quillon_com::orb::network::InterfaceSearch;
  friend class quillon_com::orb::network::InterfaceWalk;

  std::map<uint32_t, NetInterface> interfaces;  // by index
  bool includeLoopback;
};

// None of the functions below throws: where memory runs out the result is false, or "", and the
// outputs are untouched.

// Fills `list` by its `initialize` and returns the result.
ORB_EXPORT bool getNetInterfacesList(NetInterfaceList& list);

// Copies the first interface of `list`, in the order of its `getIndexes`, that carries an address
// whose text is exactly `ip` into `out`. Returns false, `out` untouched, when none does.
// Quirk: texts are compared, not addresses: "fe80::1" does not find "fe80:0:0:0:0:0:0:1".
ORB_EXPORT bool getNetInterfaceFromIPAddress(NetInterface& out, const std::string& ip,
                                             NetInterfaceList& list);

// The same search; assigns the interface's hardware address to `mac`. Returns false, `mac`
// untouched, when no interface carries `ip`.
ORB_EXPORT bool getMACAddressFromIPAddress(std::string& mac, const std::string& ip,
                                           NetInterfaceList& list);

// The six bytes at `bytes` as twelve lower-case hexadecimal digits; "" for a null pointer.
ORB_EXPORT std::string formatMACAddress(unsigned char* bytes);

// Assigns the hardware address of the interface called `name` to `mac`, in formatMACAddress's
// form. Returns false, `mac` untouched, when the system's list cannot be read or holds no
// link-layer entry of exactly that name.
ORB_EXPORT bool getMacAddr(std::string& mac, const std::string& name);

// Assigns the numeric text of a netmask to `text`. `family` is that of the address which the mask
// belongs to; it stands in where the mask's own family reads 0. Of `mask` only the bytes of its own
// stated length are read (on a system without one: those of its family's record), the rest counts
// as zero. Returns false, `text` untouched, for a null `mask` and for a family without a text.
ORB_EXPORT bool getNetMask(const unsigned int& family, sockaddr* mask, std::string& text);

// For AF_INET assigns the dotted quad of mask AND address to `text`; `mask` is read like
// getNetMask's, `addr` is a whole sockaddr_in. Returns false, `text` untouched, only for a null
// `mask` or `addr`.
// Quirk: for any other family the text is "N/A" and the result true.
ORB_EXPORT bool getNetAddr(const unsigned int& family, sockaddr* mask, sockaddr* addr,
                           std::string& text);
