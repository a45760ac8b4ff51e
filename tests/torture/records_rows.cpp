// tests/torture/records_rows.cpp: network/ipaddress.h and the record of network/netinterface.h
// under torture.
#include <utility>

#include "network/ipaddress.h"
#include "network/netinterface.h"
#include "tests/support/torture.h"

namespace {

using orbtest::Fault;
using orbtest::Trial;

// Texts beyond what an object holds without asking for memory.
const std::string kOld = "the text that stood here before";
const std::string kNew = "the text that is to stand here now";

const std::vector<Fault> without_memory = {{"operator new", "no memory"}};

IPAddress address_of(const std::string& text) {
  IPAddress address;
  address.setOption(IP_ADDRESS, text);
  address.setOption(IP_SUBNET_MASK, text);
  address.setOption(IP_SUBNET_ADDR, text);
  address.setOption(IP_FAMILY, static_cast<unsigned>(text.size()));
  return address;
}

NetInterface interface_of(const std::string& text) {
  NetInterface interface;
  interface.setOption(NETIF_MAC_ADDRESS, text);
  interface.setOption(NETIF_INDEX_NAME, text);
  interface.setOption(NETIF_INDEX, static_cast<unsigned>(text.size()));
  interface.setOption(NETIF_IP_ADDRESS, address_of(text));
  interface.setOption(NETIF_SORT_LAST, text == kNew ? 1U : 0U);
  return interface;
}

// Whether every field is as the functions above made it.
bool holds(const IPAddress& address, const std::string& text) {
  return address.getIPAddress() == text && address.getSubNetMask() == text &&
         address.getSubNetAddr() == text && address.getIPFamily() == text.size();
}

bool holds(const NetInterface& interface, const std::string& text) {
  const auto addresses = interface.getIPAddress();
  return interface.getMACAddress() == text && interface.getIndexName() == text &&
         interface.getIndex() == text.size() && interface.getSortLast() == (text == kNew) &&
         addresses.size() == 1 && holds(addresses[0], text);
}

// Says behind the answer which of the two an object holds.
template <class Object>
void tell(Trial& trial, const Object& object) {
  const char* const held =
      holds(object, kOld) ? ", old" : (holds(object, kNew) ? ", new" : ", a mixture");
  trial.answer(trial.answer() + std::string(held));
}

template <class Object, Object (*made_of)(const std::string&)>
void copy(Trial& trial) {
  const Object original = made_of(kNew);
  trial.call([&] { const Object made(original); });
}

template <class Object, Object (*made_of)(const std::string&)>
void assign(Trial& trial) {
  const Object original = made_of(kNew);
  Object object = made_of(kOld);
  trial.call([&] { object = original; });
  tell(trial, object);
}

template <class Object, Object (*made_of)(const std::string&)>
void destroy(Trial& trial) {
  auto object = std::make_unique<Object>(made_of(kNew));
  trial.call([&] { object.reset(); });
}

// What `get` gives of an object.
template <class Object, Object (*made_of)(const std::string&), class Get>
std::function<void(Trial&)> read(Get get) {
  return [get](Trial& trial) {
    const Object object = made_of(kNew);
    trial.call([&] { return get(object); });
  };
}

template <class Get>
std::function<void(Trial&)> read_address(Get get) {
  return read<IPAddress, address_of>(get);
}

template <class Get>
std::function<void(Trial&)> read_interface(Get get) {
  return read<NetInterface, interface_of>(get);
}

const std::vector<Fault> assigning = {{"operator new", "no memory, old"}};

const orbtest::Tortures addresses({
    {"IPAddress::IPAddress()", "", "done",
     [](Trial& trial) { trial.call([] { const IPAddress address; }); }},
    {"IPAddress::IPAddress(IPAddress const&)", "", "done", copy<IPAddress, address_of>,
     without_memory},
    {"IPAddress::operator=(IPAddress const&)", "", "done, new", assign<IPAddress, address_of>,
     assigning},
    {"IPAddress::~IPAddress()", "", "done", destroy<IPAddress, address_of>},
    {"IPAddress::getIPAddress() const", "", kNew.c_str(),
     read_address([](const auto& address) { return address.getIPAddress(); }), without_memory},
    {"IPAddress::getSubNetMask() const", "", kNew.c_str(),
     read_address([](const auto& address) { return address.getSubNetMask(); }), without_memory},
    {"IPAddress::getSubNetAddr() const", "", kNew.c_str(),
     read_address([](const auto& address) { return address.getSubNetAddr(); }), without_memory},
    {"IPAddress::getIPFamily() const", "", "34",
     read_address([](const auto& address) { return address.getIPFamily(); })},
    {"IPAddress::setOption(IP_PARAM, std::string)", "", "done",
     [](Trial& trial) {
       IPAddress address;
       std::string text = kNew;
       trial.call([&] { address.setOption(IP_ADDRESS, std::move(text)); });
     }},
    {"IPAddress::setOption(IP_PARAM, unsigned int)", "", "done",
     [](Trial& trial) {
       IPAddress address;
       trial.call([&] { address.setOption(IP_FAMILY, 2U); });
     }},
});

const orbtest::Tortures interfaces({
    {"NetInterface::NetInterface()", "", "done",
     [](Trial& trial) { trial.call([] { const NetInterface interface; }); }},
    {"NetInterface::NetInterface(NetInterface const&)", "", "done",
     copy<NetInterface, interface_of>, without_memory},
    {"NetInterface::operator=(NetInterface const&)", "", "done, new",
     assign<NetInterface, interface_of>, assigning},
    {"NetInterface::~NetInterface()", "", "done", destroy<NetInterface, interface_of>},
    {"NetInterface::getIndex() const", "", "34",
     read_interface([](const auto& interface) { return interface.getIndex(); })},
    {"NetInterface::getIndexName() const", "", kNew.c_str(),
     read_interface([](const auto& interface) { return interface.getIndexName(); }),
     without_memory},
    {"NetInterface::getMACAddress() const", "", kNew.c_str(),
     read_interface([](const auto& interface) { return interface.getMACAddress(); }),
     without_memory},
    {"NetInterface::getIPAddress() const", "", "1",
     read_interface([](const auto& interface) { return interface.getIPAddress().size(); }),
     without_memory},
    {"NetInterface::getSortLast() const", "", "1",
     read_interface([](const auto& interface) { return interface.getSortLast(); })},
    {"NetInterface::setOption(NETINTERFACE_PARAM, std::string)", "", "done",
     [](Trial& trial) {
       NetInterface interface;
       std::string text = kNew;
       trial.call([&] { interface.setOption(NETIF_INDEX_NAME, std::move(text)); });
     }},
    {"NetInterface::setOption(NETINTERFACE_PARAM, unsigned int)", "", "done",
     [](Trial& trial) {
       NetInterface interface;
       trial.call([&] { interface.setOption(NETIF_INDEX, 2U); });
     }},
    {"NetInterface::setOption(NETINTERFACE_PARAM, IPAddress const&)",
     "",
     "done, 2",
     [](Trial& trial) {
       NetInterface interface = interface_of(kNew);
       const IPAddress added = address_of(kOld);
       trial.call([&] { interface.setOption(NETIF_IP_ADDRESS, added); });
       trial.answer(trial.answer() + (", " + std::to_string(interface.getIPAddress().size())));
     },
     {{"operator new", "no memory, 1"}}},
});

}  // namespace
