// network/netinterface.cpp: the interface record, the list, and the searches over it.
#include "network/netinterface.h"

#include <algorithm>
#include <array>
#include <utility>

#include "network/addresstext.h"
#include "network/enumerate.h"
#include "platform/system.h"
#include "portability/outofmemory.h"

namespace network = quillon_com::orb::network;
namespace platform = quillon_com::orb::platform;
using quillon_com::orb::portability::unless_out_of_memory;

NetInterface::NetInterface() : index(0), sortLast(false) {}
NetInterface::NetInterface(const NetInterface& other) = default;
NetInterface::~NetInterface() = default;

// The copies first, here and for the list: one that finds no memory leaves this object whole.
NetInterface& NetInterface::operator=(const NetInterface& other) {
  NetInterface copy(other);
  index = copy.index;
  macAddress.swap(copy.macAddress);
  indexName.swap(copy.indexName);
  ipAddresses.swap(copy.ipAddresses);
  sortLast = copy.sortLast;
  return *this;
}

uint32_t NetInterface::getIndex() const { return index; }

std::string NetInterface::getIndexName() const { return indexName; }

std::string NetInterface::getMACAddress() const { return macAddress; }

std::vector<IPAddress> NetInterface::getIPAddress() const { return ipAddresses; }

bool NetInterface::getSortLast() const { return sortLast; }

void NetInterface::setOption(NETINTERFACE_PARAM param, std::string value) {
  if (param == NETIF_MAC_ADDRESS) {
    macAddress = std::move(value);
  } else if (param == NETIF_INDEX_NAME) {
    indexName = std::move(value);
  }
}

void NetInterface::setOption(NETINTERFACE_PARAM param, unsigned int value) {
  if (param == NETIF_INDEX) {
    index = value;
  } else if (param == NETIF_SORT_LAST) {
    sortLast = value != 0;
  }
}

void NetInterface::setOption(NETINTERFACE_PARAM param, const IPAddress& value) {
  if (param == NETIF_IP_ADDRESS) ipAddresses.push_back(value);
}

NetInterfaceList::NetInterfaceList(bool loopback) : includeLoopback(loopback) {}
NetInterfaceList::NetInterfaceList(const NetInterfaceList& other) = default;
NetInterfaceList::~NetInterfaceList() = default;

NetInterfaceList& NetInterfaceList::operator=(const NetInterfaceList& other) {
  NetInterfaceList copy(other);
  interfaces.swap(copy.interfaces);
  includeLoopback = copy.includeLoopback;
  return *this;
}

bool NetInterfaceList::initialize() {
  return unless_out_of_memory(false, [&] { return network::fill_list(platform::host(), *this); });
}

std::vector<int> NetInterfaceList::getIndexes() const {
  std::vector<int> indexes;
  indexes.reserve(interfaces.size());
  for (const bool last : {false, true}) {
    for (const auto& [index, record] : interfaces) {
      if (record.getSortLast() == last) indexes.push_back(static_cast<int>(index));
    }
  }
  return indexes;
}

NetInterface& NetInterfaceList::getNetInterface(const unsigned int& index) {
  return interfaces[index];
}

bool NetInterfaceList::getNetInterface(unsigned int index, NetInterface& out) const {
  const auto found = interfaces.find(index);
  if (found == interfaces.end()) return false;
  return unless_out_of_memory(false, [&] {
    out = found->second;
    return true;
  });
}

bool getNetInterfacesList(NetInterfaceList& list) { return list.initialize(); }

bool getNetInterfaceFromIPAddress(NetInterface& out, const std::string& ip,
                                  NetInterfaceList& list) {
  return unless_out_of_memory(false, [&] {
    const NetInterface* const carrier = network::carrier_of(ip, list);
    if (carrier != nullptr) out = *carrier;
    return carrier != nullptr;
  });
}

bool getMACAddressFromIPAddress(std::string& mac, const std::string& ip, NetInterfaceList& list) {
  return unless_out_of_memory(false, [&] {
    const NetInterface* const carrier = network::carrier_of(ip, list);
    if (carrier != nullptr) mac = carrier->getMACAddress();
    return carrier != nullptr;
  });
}

std::string formatMACAddress(unsigned char* bytes) {
  if (bytes == nullptr) return "";
  std::array<unsigned char, 6> address;
  std::copy_n(bytes, address.size(), address.begin());
  return network::hardware_text(address);
}

bool getMacAddr(std::string& mac, const std::string& name) {
  return unless_out_of_memory(
      false, [&] { return network::hardware_address(platform::host(), name, &mac); });
}

bool getNetMask(const unsigned int& family, sockaddr* mask, std::string& text) {
  return unless_out_of_memory(false, [&] { return network::mask_text(family, mask, &text); });
}

bool getNetAddr(const unsigned int& family, sockaddr* mask, sockaddr* addr, std::string& text) {
  return unless_out_of_memory(false,
                              [&] { return network::subnet_text(family, mask, addr, &text); });
}
