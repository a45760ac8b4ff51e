// sysprops/networkinfo.cpp: the machine's names and the one address that it presents.
#include "sysprops/networkinfo.h"

#include <sys/socket.h>

#include <optional>
#include <vector>

#include "network/enumerate.h"
#include "network/hostnames.h"
#include "network/ipaddress.h"
#include "sysprops/collect.h"

namespace quillon_com::orb::sysprops {

namespace {

void write_address(const IPAddress& address, NetworkInformation& record) {
  record.ipAddress = sysprops_ansi_to_wide(address.getIPAddress());
  record.subnetAddress = sysprops_ansi_to_wide(address.getSubNetAddr());
  record.subnetMask = sysprops_ansi_to_wide(address.getSubNetMask());
}

void write_hardware_address(const NetInterface& interface, NetworkInformation& record) {
  record.netAddress = sysprops_ansi_to_wide(interface.getMACAddress());
}

bool choose_last_known(NetInterfaceList& list, const std::string& last_known,
                       NetworkInformation& record) {
  if (last_known.empty()) return false;
  const NetInterface* const interface = network::carrier_of(last_known, list);
  if (interface == nullptr) return false;
  write_hardware_address(*interface, record);
  for (const IPAddress& address : interface->getIPAddress()) {
    if (address.getIPAddress() == last_known) write_address(address, record);
  }
  return true;
}

bool choose_family(NetInterfaceList& list, unsigned family, NetworkInformation& record) {
  for (const int index : list.getIndexes()) {
    const NetInterface& interface = list.getNetInterface(static_cast<unsigned>(index));
    for (const IPAddress& address : interface.getIPAddress()) {
      if (address.getIPFamily() != family) continue;
      write_address(address, record);
      write_hardware_address(interface, record);
      return true;
    }
  }
  return false;
}

void choose_first(NetInterfaceList& list, NetworkInformation& record) {
  const std::vector<int> indexes = list.getIndexes();
  if (indexes.empty()) return;
  const NetInterface& interface = list.getNetInterface(static_cast<unsigned>(indexes.front()));
  const std::vector<IPAddress> addresses = interface.getIPAddress();
  if (addresses.empty()) return;
  write_address(addresses.front(), record);
  write_hardware_address(interface, record);
}

}  // namespace

void choose_address(NetInterfaceList& list, const std::string& last_known,
                    NetworkInformation& record) {
  if (choose_last_known(list, last_known, record)) return;
  const unsigned family = last_known.find(':') == std::string::npos ? AF_INET : AF_INET6;
  if (choose_family(list, family, record)) return;
  choose_first(list, record);
}

bool collect_network(const platform::System& system, NetworkInformation& record, Fields fields) {
  if (fields & kComputerName) {
    std::string name;
    record.computerName =
        computer_name(system, name) ? sysprops_ansi_to_wide(name) : DefaultProp_Val;
  }
  network::HostNames names(system);
  if (fields & kDomainName) record.domainName = names.domain_name();
  if (fields & kHostName) record.ipHostName = names.fqdn();
  record.ipxAddress = DefaultProp_Val;
  if (!(fields & kAddresses)) return true;

  NetInterfaceList list(false);
  if (!network::fill_list(system, list)) return false;
  choose_address(list, sysprops_wide_to_ansi(ISysProps::GetLastKnownLocalIP()), record);
  return true;
}

bool ISysProps::GetNetworkInformation(NetworkInformation& record) {
  return collect_network(platform::host(), record);
}

}  // namespace quillon_com::orb::sysprops
