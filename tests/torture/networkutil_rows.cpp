// tests/torture/networkutil_rows.cpp: network/networkutil.h and network/ipv6.h under torture.
#include "network/networkutil.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <utility>

#include "network/ipv6.h"
#include "tests/network/loopback.h"
#include "tests/support/torture.h"
#include "tests/torture/machine.h"

namespace {

using orbtest::Fault;
using orbtest::Machine;
using orbtest::SlowConnections;
using orbtest::Trial;

const std::string kLinkLocal = "[fe80::aede:48ff:fe00:1122]";

const std::vector<Fault> without_memory = {{"operator new", "no memory"}};

// A function of one text that it takes over.
template <std::string (*function)(std::string)>
void convert(Trial& trial, const std::string& text) {
  std::string argument = text;
  trial.call([&] { return function(std::move(argument)); });
}

const orbtest::Tortures texts({
    {"noOfOccurences(std::string const&, char, int)", "", "2",
     [](Trial& trial) { trial.call([] { return noOfOccurences("1:2:3", ':', 7); }); }},
    {"expandIPV6Address(std::string)", "", "fe80:0:0:0:aede:48ff:fe00:1122",
     [](Trial& trial) { convert<expandIPV6Address>(trial, "fe80::aede:48ff:fe00:1122%eth0"); },
     without_memory},
    {"calculateSubNetAddrForV6(std::string const&, std::string const&)", "",
     "2001:db8:aede:48ff:0:0:0:0",
     [](Trial& trial) {
       const std::string address = "2001:db8:aede:48ff:aede:48ff:fe00:1122";
       const std::string mask = "ffff:ffff:ffff:ffff:0:0:0:0";
       trial.call([&] { return calculateSubNetAddrForV6(address, mask); });
     },
     without_memory},
    {"convertV6AddrToLiteralFormat(std::string)", "", "fe80--aede-48ff-fe00-1122.ipv6-literal.net",
     [](Trial& trial) { convert<convertV6AddrToLiteralFormat>(trial, kLinkLocal); },
     without_memory},
    {"convertLiteralFormatToV6Addr(std::string)", "", "fe80::aede:48ff:fe00:1122",
     [](Trial& trial) {
       convert<convertLiteralFormatToV6Addr>(trial,
                                             "[fe80--aede-48ff-fe00-1122s4.ipv6-literal.net]");
     },
     without_memory},
});

// A loopback address of `family` that takes connections, and a socket towards it.
struct Attempt {
  orbtest::Listener listener{AF_INET};
  orbtest::Fd socket = orbtest::stream_socket(AF_INET);
};

void connect_within_seconds(Trial& trial, unsigned seconds) {
  Attempt attempt;
  ANetworkUtil utility;
  auto& endpoint = attempt.listener.endpoint();
  trial.call([&] {
    return utility.ConnectWithTimeout(attempt.socket.get(), endpoint.get(),
                                      static_cast<int>(endpoint.length), seconds);
  });
}

sockaddr_in6 documentation_address() {
  sockaddr_in6 address{};
  address.sin6_family = AF_INET6;
  inet_pton(AF_INET6, "2001:db8::aede:48ff:fe00:1122", &address.sin6_addr);
  return address;
}

// The status flags are read, which may fail, and set.
std::vector<Fault> waiting_for_connection() {
  return {{"fcntl#1", "0"},          {"fcntl#2", "-1"}, {"fcntl onwards", "-1"},
          {"connect", "0"},  // Quirk: only being writable counts
          {"connect onwards", "-1"}, {"select", "-1"},  {"getsockopt", "-1"}};
}

const orbtest::Tortures sockets({
    {"ANetworkUtil::ANetworkUtil()", "", "done",
     [](Trial& trial) { trial.call([] { const ANetworkUtil utility; }); }},
    {"ANetworkUtil::~ANetworkUtil()", "", "done",
     [](Trial& trial) {
       auto utility = std::make_unique<ANetworkUtil>();
       trial.call([&] { utility.reset(); });
     }},
    {"ANetworkUtil::makeSocketNonBlocking(int)",
     "",
     "1",
     [](Trial& trial) {
       const Attempt attempt;
       trial.call([&] { return ANetworkUtil().makeSocketNonBlocking(attempt.socket.get()); });
     },
     {{"fcntl#1", "1"}, {"fcntl#2", "0"}, {"fcntl onwards", "0"}}},
    {"ANetworkUtil::ConnectWithTimeout(int, sockaddr*, int, unsigned int)",
     "without time-out",
     "0",
     [](Trial& trial) { connect_within_seconds(trial, 0); },
     {{"connect", "-1"}}},
    {"ANetworkUtil::ConnectWithTimeout(int, sockaddr*, int, unsigned int)", "with time-out", "0",
     [](Trial& trial) {
       const SlowConnections slow;
       connect_within_seconds(trial, 60);
     },
     waiting_for_connection()},
    {"ANetworkUtil::qlnNetToString(sockaddr*, int)",
     "",
     "2001:db8::aede:48ff:fe00:1122",
     [](Trial& trial) {
       sockaddr_in6 address = documentation_address();
       trial.call([&] {
         return ANetworkUtil().qlnNetToString(reinterpret_cast<sockaddr*>(&address),
                                              NI_NUMERICHOST);
       });
     },
     {{"getnameinfo", ""}, {"operator new", ""}}},
    {"ANetworkUtil::formatV6addr(std::string, bool)",
     "",
     kLinkLocal.c_str(),
     [](Trial& trial) {
       std::string address = kLinkLocal;
       trial.call([&] { return ANetworkUtil().formatV6addr(std::move(address), true); });
     },
     {{"operator new", ""}}},
});

// Asks for the zone of a link-local address: what the walk over the interfaces needs, and whether
// the resolver takes the address so. An interface whose index is not told is filed under 0.
std::vector<Fault> finding_a_zone(const char* found, const char* zero, const char* none,
                                  const char* no_memory) {
  return {{"operator new", no_memory},
          {"getifaddrs", none},
          {"getifaddrs onwards", no_memory},
          {"getnameinfo", found},  // of an address of two
          {"getnameinfo onwards", no_memory},
          {"socket", found},
          {"socket#3", zero},
          {"socket onwards", no_memory},
          {"ioctl", zero},
          {"ioctl onwards", no_memory},
          {"close", found},
          {"close onwards", no_memory},
          {"getaddrinfo#1", none},
          {"getaddrinfo#1 onwards", no_memory}};
}

const orbtest::Tortures zones({
    {"ANetworkUtil::qlnGetScopeId(std::string const&, unsigned int&)", "", "1, 2",
     [](Trial& trial) {
       const Machine machine;
       unsigned zone = 77;
       trial.call([&] { return ANetworkUtil().qlnGetScopeId(kLinkLocal, zone); });
       trial.answer(trial.answer() + (", " + std::to_string(zone)));
     },
     finding_a_zone("1, 2", "1, 0", "0, 77", "0, 77")},
    {"ANetworkUtil::formatV6addrWithScope(std::string, bool)", "", "[fe80::aede:48ff:fe00:1122%2]",
     [](Trial& trial) {
       const Machine machine;
       std::string address = kLinkLocal;
       trial.call([&] { return ANetworkUtil().formatV6addrWithScope(std::move(address), true); });
     },
     finding_a_zone("[fe80::aede:48ff:fe00:1122%2]", "[fe80::aede:48ff:fe00:1122%0]",
                    kLinkLocal.c_str(), "")},
});

const std::string kHost = "127.0.0.1";

struct Names {
  std::vector<char*> texts;
  ~Names() { ANetworkUtil().qlnFreeAddrinfo(texts); }
};

const std::string kHostTwice = "127.0.0.1;127.0.0.1";

// Reaches for a listener on the loopback interface.
template <class Reach>
void reach(Trial& trial, Reach reached) {
  const orbtest::Listener listener(AF_INET);
  std::string service = listener.service();
  std::string local = "untouched";
  trial.call([&] { return reached(std::move(service), local); });
  trial.answer(trial.answer() + (" " + local));
}

// The resolver's code for a call that fails in this program, and what follows one that gives none.
const std::string kNoList = std::to_string(EAI_MEMORY) + " untouched";
constexpr const char* kReached = "0 127.0.0.1";
constexpr const char* kNotReached = "-1 untouched";

const orbtest::Tortures resolver({
    {"ANetworkUtil::qlnCreateAddrinfo(std::string const&, std::string const&, addrinfo**, bool "
     "const&)",
     "", "0 made",
     [](Trial& trial) {
       const Machine machine;
       addrinfo* list = nullptr;
       trial.call([&] { return ANetworkUtil().qlnCreateAddrinfo(kLinkLocal, "80", &list, false); });
       trial.answer(trial.answer() + (" " + orbtest::answer_text(list)));
       if (list != nullptr) freeaddrinfo(list);
     },
     [] {
       auto faults = finding_a_zone("0 made", "0 made", "0 made", "-1 null");
       static const std::string refused = std::to_string(EAI_MEMORY) + " null";
       faults.push_back({"getaddrinfo#2", refused.c_str()});
       return faults;
     }()},
    {"ANetworkUtil::qlnGetAddrinfo(std::string const&, std::string, std::vector<char*, "
     "std::allocator<char*>>&, int)",
     "", "0 127.0.0.1",
     [](Trial& trial) {
       Names names;
       trial.call(
           [&] { return ANetworkUtil().qlnGetAddrinfo(kHost, "", names.texts, NI_NUMERICHOST); });
       for (const char* text : names.texts)
         trial.answer(trial.answer() + (" " + std::string(text)));
     },
     [] {
       static const std::string refused = std::to_string(EAI_MEMORY);
       return std::vector<Fault>{{"getaddrinfo", refused.c_str()},
                                 {"getnameinfo", "-1"},
                                 {"operator new#1", "-1"},  // the room for fourteen names
                                 {"operator new#1 onwards", "-1"},
                                 {"operator new#2", "0 127.0.0.1"},  // the array is asked for again
                                 {"operator new#2 onwards", "-1"}};
     }()},
    {"ANetworkUtil::qlnFreeAddrinfo(std::vector<char*, std::allocator<char*>>&)", "", "done",
     [](Trial& trial) {
       Names names;
       ANetworkUtil().qlnGetAddrinfo(kHost, "", names.texts, NI_NUMERICHOST);
       trial.call([&] { ANetworkUtil().qlnFreeAddrinfo(names.texts); });
     }},
    {"ANetworkUtil::qlnGetLocalIPAddress(std::string const&, std::string, std::string&, bool "
     "const&, int, int)",
     "",
     kReached,
     [](Trial& trial) {
       reach(trial, [](std::string service, std::string& local) {
         return ANetworkUtil().qlnGetLocalIPAddress(kHost, std::move(service), local, true,
                                                    NI_NUMERICHOST, 0);
       });
     },
     {{"getaddrinfo", kNoList.c_str()},
      {"socket", kNotReached},
      {"fcntl", kReached},  // a child may see the socket
      {"fcntl onwards", kNotReached},
      {"connect", kNotReached},
      {"getsockname", kNotReached},
      {"getnameinfo", kNotReached},
      {"close", kReached}}},
    {"ANetworkUtil::qlnGetLocalIPAddressFromList(std::string const&, std::string, std::string&, "
     "bool const&, int, int)",
     "",
     kReached,
     [](Trial& trial) {
       reach(trial, [](std::string service, std::string& local) {
         return ANetworkUtil().qlnGetLocalIPAddressFromList(kHostTwice, std::move(service), local,
                                                            true, 0, 0);
       });
     },
     // The second host of the list is tried.
     {{"getaddrinfo", kReached},
      {"getaddrinfo onwards", kNoList.c_str()},
      {"socket", kReached},
      {"socket onwards", kNoList.c_str()},
      {"fcntl", kReached},
      {"fcntl onwards", kNoList.c_str()},
      {"connect", kReached},
      {"connect onwards", kNoList.c_str()},
      {"getsockname", kReached},
      {"getsockname onwards", kNoList.c_str()},
      {"getnameinfo", kReached},
      {"getnameinfo onwards", kNoList.c_str()},
      {"close", kReached}}},
    {"ANetworkUtil::qlnCompareAddressFromPeerAddress(std::string, std::string, std::string)",
     "",
     "1",
     [](Trial& trial) {
       std::string server = "[2001:db8:0:0:aede:48ff:fe00:1122]";  // never the text itself
       std::string peer = "2001:db8::aede:48ff:fe00:1122";
       trial.call([&] {
         return ANetworkUtil().qlnCompareAddressFromPeerAddress(std::move(server), std::string(),
                                                                std::move(peer));
       });
     },
     {{"getaddrinfo", "0"}, {"getnameinfo", "0"}, {"operator new", "0"}}},
});

// A text of the machine's; an empty one, where its conversion finds no memory, tells no more than
// the default.
template <std::wstring (*function)()>
void tell_name(Trial& trial) {
  const Machine machine;
  trial.call(function);
  if (*trial.answer() == '\0') trial.answer("N/A");
}

const orbtest::Tortures names({
    {"getDomainName()",
     "",
     "office.example",
     tell_name<getDomainName>,
     {{"getdomainname", "office.example"},  // as without a domain of the kernel
      {"getdomainname onwards", "N/A"},
      {"gethostname", "N/A"},
      {"gethostbyname2_r", "N/A"},
      {"operator new", "N/A"},
      {"malloc", "N/A"}}},
    {"getFqdnAddress()",
     "",
     "box.office.example",
     tell_name<getFqdnAddress>,
     {{"gethostname", "N/A"},
      {"gethostbyname2_r", "box."},
      {"gethostbyname2_r onwards", "N/A"},
      {"operator new", "N/A"},
      {"malloc", "N/A"}}},
});

}  // namespace
