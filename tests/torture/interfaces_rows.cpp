// tests/torture/interfaces_rows.cpp: the list of network/netinterface.h and the functions beside it
// under torture.
#include <arpa/inet.h>
#include <netinet/in.h>

#include "network/netinterface.h"
#include "tests/support/torture.h"
#include "tests/torture/machine.h"

namespace {

using orbtest::Fault;
using orbtest::Machine;
using orbtest::Trial;

const std::string kAddress = "fe80:0:0:0:aede:48ff:fe00:1122";

const std::vector<Fault> without_memory = {{"operator new", "no memory"}};

// The machine's interface, filled in, and one more, of index 9.
NetInterfaceList list_of_two() {
  NetInterfaceList list(false);
  list.initialize();
  list.getNetInterface(9).setOption(NETIF_INDEX_NAME, "an interface of a long name");
  return list;
}

// The interfaces as "2:eth0(2)": index, name and number of addresses.
std::string text_of(NetInterfaceList& list) {
  std::string text;
  for (const int index : list.getIndexes()) {
    const NetInterface& interface = list.getNetInterface(static_cast<unsigned>(index));
    text += " " + std::to_string(index) + ":" + interface.getIndexName() + "(" +
            std::to_string(interface.getIPAddress().size()) + ")";
  }
  return text;
}

template <class Fill>
void fill(Trial& trial, Fill filled) {
  const Machine machine;
  NetInterfaceList list(false);
  trial.call([&] { return filled(list); });
  trial.answer(trial.answer() + text_of(list));
}

// What fails with all behind it leaves no memory for the records. Asked in turn: the text of the
// IPv4 address, a socket of its family, the text of its mask; the same for IPv6; then, through one
// more socket, the index.
std::vector<Fault> filling() {
  return {{"getifaddrs", "0"},          {"operator new", "0"},     {"getnameinfo", "1 2:eth0(1)"},
          {"getnameinfo onwards", "0"}, {"socket", "1 2:eth0(1)"}, {"socket#3", "1 0:eth0(2)"},
          {"socket onwards", "0"},      {"ioctl", "1 0:eth0(2)"},  {"ioctl onwards", "0"},
          {"close", "1 2:eth0(2)"},     {"close onwards", "0"}};
}

const orbtest::Tortures lists({
    {"NetInterfaceList::NetInterfaceList(bool)", "", "done",
     [](Trial& trial) { trial.call([] { const NetInterfaceList list(false); }); }},
    {"NetInterfaceList::NetInterfaceList(NetInterfaceList const&)", "", "done",
     [](Trial& trial) {
       const Machine machine;
       const NetInterfaceList list = list_of_two();
       trial.call([&] { const NetInterfaceList copy(list); });
     },
     without_memory},
    {"NetInterfaceList::operator=(NetInterfaceList const&)",
     "",
     "done 2:eth0(2) 9:an interface of a long name(0)",
     [](Trial& trial) {
       const Machine machine;
       const NetInterfaceList list = list_of_two();
       NetInterfaceList target(false);
       target.getNetInterface(7);
       trial.call([&] { target = list; });
       trial.answer(trial.answer() + text_of(target));
     },
     {{"operator new", "no memory 7:(0)"}}},
    {"NetInterfaceList::~NetInterfaceList()", "", "done",
     [](Trial& trial) {
       const Machine machine;
       auto list = std::make_unique<NetInterfaceList>(list_of_two());
       trial.call([&] { list.reset(); });
     }},
    {"NetInterfaceList::initialize()", "", "1 2:eth0(2)",
     [](Trial& trial) { fill(trial, [](auto& list) { return list.initialize(); }); }, filling()},
    {"getNetInterfacesList(NetInterfaceList&)", "", "1 2:eth0(2)",
     [](Trial& trial) { fill(trial, getNetInterfacesList); }, filling()},
    {"NetInterfaceList::getIndexes() const", "", "2",
     [](Trial& trial) {
       const Machine machine;
       const NetInterfaceList list = list_of_two();
       trial.call([&] { return list.getIndexes().size(); });
     },
     without_memory},
    {"NetInterfaceList::getNetInterface(unsigned int const&)", "new", "made 7:(0)",
     [](Trial& trial) {
       NetInterfaceList list(false);
       trial.call([&] { return &list.getNetInterface(7); });
       trial.answer(trial.answer() + text_of(list));
     },
     without_memory},
    {"NetInterfaceList::getNetInterface(unsigned int, NetInterface&) const",
     "",
     "1 eth0",
     [](Trial& trial) {
       const Machine machine;
       const NetInterfaceList list = list_of_two();
       NetInterface out;
       trial.call([&] { return list.getNetInterface(2, out); });
       trial.answer(trial.answer() + (" " + out.getIndexName()));
     },
     {{"operator new", "0 "}}},
});

const orbtest::Tortures functions({
    {"getNetInterfaceFromIPAddress(NetInterface&, std::string const&, NetInterfaceList&)",
     "",
     "1 eth0",
     [](Trial& trial) {
       const Machine machine;
       NetInterfaceList list = list_of_two();
       NetInterface out;
       trial.call([&] { return getNetInterfaceFromIPAddress(out, kAddress, list); });
       trial.answer(trial.answer() + (" " + out.getIndexName()));
     },
     {{"operator new", "0 "}}},
    {"getMACAddressFromIPAddress(std::string&, std::string const&, NetInterfaceList&)",
     "",
     "1 001c420aff01",
     [](Trial& trial) {
       const Machine machine;
       NetInterfaceList list = list_of_two();
       std::string mac = "before";
       trial.call([&] { return getMACAddressFromIPAddress(mac, kAddress, list); });
       trial.answer(trial.answer() + (" " + mac));
     },
     {{"operator new", "0 before"}}},
    {"formatMACAddress(unsigned char*)", "", "001c420aff01",
     [](Trial& trial) {
       unsigned char bytes[] = {0x00, 0x1c, 0x42, 0x0a, 0xff, 0x01};
       trial.call([&] { return formatMACAddress(bytes); });
     }},
    {"getMacAddr(std::string&, std::string const&)",
     "",
     "1 001c420aff01",
     [](Trial& trial) {
       const Machine machine;
       std::string mac = "before";
       const std::string name = "eth0";
       trial.call([&] { return getMacAddr(mac, name); });
       trial.answer(trial.answer() + (" " + mac));
     },
     {{"getifaddrs", "0 before"}, {"operator new", "0 before"}}},
    {"getNetMask(unsigned int const&, sockaddr*, std::string&)",
     "",
     "1 ffff:ffff:ffff:ffff::",
     [](Trial& trial) {
       sockaddr_in6 mask{};
       mask.sin6_family = AF_INET6;
       inet_pton(AF_INET6, "ffff:ffff:ffff:ffff::", &mask.sin6_addr);
       std::string text = "before";
       trial.call([&] { return getNetMask(AF_INET6, reinterpret_cast<sockaddr*>(&mask), text); });
       trial.answer(trial.answer() + (" " + text));
     },
     {{"getnameinfo", "0 before"}, {"operator new", "0 before"}}},
    {"getNetAddr(unsigned int const&, sockaddr*, sockaddr*, std::string&)", "", "1 192.0.2.0",
     [](Trial& trial) {
       sockaddr_in mask{};
       mask.sin_family = AF_INET;
       sockaddr_in address = mask;
       inet_pton(AF_INET, "255.255.255.0", &mask.sin_addr);
       inet_pton(AF_INET, "192.0.2.20", &address.sin_addr);
       std::string text = "before";
       trial.call([&] {
         return getNetAddr(AF_INET, reinterpret_cast<sockaddr*>(&mask),
                           reinterpret_cast<sockaddr*>(&address), text);
       });
       trial.answer(trial.answer() + (" " + text));
     }},
});

}  // namespace
