// network/ipaddress.cpp: the fields behind IPAddress.
#include "network/ipaddress.h"

#include <utility>

IPAddress::IPAddress() : ipFamily(0) {}
IPAddress::IPAddress(const IPAddress& other) = default;
IPAddress::~IPAddress() = default;

// The copies first: one that finds no memory leaves this object whole.
IPAddress& IPAddress::operator=(const IPAddress& other) {
  IPAddress copy(other);
  ipAddress.swap(copy.ipAddress);
  subNetMask.swap(copy.subNetMask);
  subNetAddr.swap(copy.subNetAddr);
  ipFamily = copy.ipFamily;
  return *this;
}

std::string IPAddress::getIPAddress() const { return ipAddress; }

std::string IPAddress::getSubNetMask() const { return subNetMask; }

std::string IPAddress::getSubNetAddr() const { return subNetAddr; }

uint32_t IPAddress::getIPFamily() const { return ipFamily; }

void IPAddress::setOption(IP_PARAM param, std::string value) {
  switch (param) {
    case IP_ADDRESS:
      ipAddress = std::move(value);
      break;
    case IP_SUBNET_MASK:
      subNetMask = std::move(value);
      break;
    case IP_SUBNET_ADDR:
      subNetAddr = std::move(value);
      break;
    default:
      break;
  }
}

void IPAddress::setOption(IP_PARAM param, unsigned int value) {
  if (param == IP_FAMILY) ipFamily = value;
}
