// tests/system/interfaces_test.cpp: interface lists of networks made for the purpose, against `ip`.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ifaddrs.h>
#include <net/if.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "network/netinterface.h"
#include "tests/support/interface_entries.h"
#include "tests/support/interface_lines.h"
#include "tests/support/mount_namespace.h"

namespace {

using nlohmann::json;
using Lines = std::vector<std::string>;

// What a network looks like from inside, by three witnesses.
struct Sight {
  bool result = false;                          // of initialize
  Lines listed;                                 // by the library
  json ip;                                      // by `ip -j addr`
  std::map<std::string, std::string> hardware;  // by /sys/class/net: name -> digits
};

Lines split(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string without_colons(std::string text) {
  text.erase(std::remove(text.begin(), text.end(), ':'), text.end());
  return text;
}

// Runs in the child and prints the result, a line per address, and after each "--" the next
// witness.
bool tell(const std::string& commands, bool loopback) {
  if (unshare(CLONE_NEWNET) != 0 || mount("none", "/sys", "sysfs", 0, nullptr) != 0) return false;
  // What goes wrong from here on is told in place of a sight, and fails the test.
  if (std::system(("exec 2>&1 >/dev/null; set -e; " + commands).c_str()) != 0) return true;
  NetInterfaceList list(loopback);
  std::printf("%d\n", list.initialize() ? 1 : 0);
  for (const std::string& line : orbtest::interface_lines(list)) std::printf("%s\n", line.c_str());
  std::printf("--\n");
  std::fflush(stdout);
  return std::system(
             "ip -j addr | tr -d '\\n' && echo && echo -- && cd /sys/class/net && "
             "for name in *; do echo \"$name $(cat \"$name/address\")\"; done") == 0;
}

// What is seen in a network that the shell commands make; nullopt without the right to make one.
std::optional<Sight> look(const std::string& commands, bool loopback) {
  const auto told = orbtest::in_mount_namespace([&] { return tell(commands, loopback); });
  if (!told) return std::nullopt;
  const Lines all = split(*told);
  const auto first = std::find(all.begin(), all.end(), "--");
  if (all.end() - first < 3) {
    ADD_FAILURE() << *told;
    return Sight{};
  }
  Sight sight;
  sight.result = all[0] == "1";
  sight.listed.assign(all.begin() + 1, first);
  sight.ip = json::parse(first[1]);
  for (auto line = first + 3; line != all.end(); ++line) {
    const size_t blank = line->find(' ');
    sight.hardware[line->substr(0, blank)] = without_colons(line->substr(blank + 1));
  }
  return sight;
}

// "2001:db8:0:0:0:0:0:1", from the bytes of an address.
std::string eight_groups(const unsigned char (&bytes)[16]) {
  std::string text;
  for (size_t i = 0; i < 16; i += 2) {
    char group[8];
    std::snprintf(group, sizeof group, "%s%x", i == 0 ? "" : ":", bytes[i] << 8 | bytes[i + 1]);
    text += group;
  }
  return text;
}

// Address, mask and subnet of `text`/`prefix`, in the library's spelling, by bits.
std::string by_bits(const std::string& text, unsigned prefix) {
  const bool four = text.find(':') == std::string::npos;
  unsigned char address[16] = {};
  unsigned char mask[16] = {};
  unsigned char subnet[16] = {};
  EXPECT_EQ(1, inet_pton(four ? AF_INET : AF_INET6, text.c_str(), address)) << text;
  for (unsigned bit = 0; bit < prefix; ++bit) {
    mask[bit / 8] = static_cast<unsigned char>(mask[bit / 8] | 0x80 >> bit % 8);
  }
  for (size_t i = 0; i < 16; ++i) subnet[i] = address[i] & mask[i];
  const auto spelled = [four](const unsigned char(&bytes)[16]) {
    char quad[INET_ADDRSTRLEN];
    return four ? std::string(inet_ntop(AF_INET, bytes, quad, sizeof quad)) : eight_groups(bytes);
  };
  return spelled(address) + "/" + spelled(mask) + " " + spelled(subnet) + (four ? " v4" : " v6");
}

// The lines that the library owes for what `ip` and /sys say.
Lines owed(const Sight& sight, bool loopback) {
  std::map<unsigned, Lines> by_index;
  for (const json& interface : sight.ip) {
    const Lines flags = interface.at("flags");
    const auto has = [&flags](const char* flag) {
      return std::find(flags.begin(), flags.end(), flag) != flags.end();
    };
    if (!has("UP") || (has("LOOPBACK") && !loopback) || !interface.contains("address")) continue;
    const std::string name = interface.at("ifname");
    const unsigned index = interface.at("ifindex");
    for (const json& address : interface.at("addr_info")) {
      by_index[index].push_back(std::to_string(index) + " " + name + " " + sight.hardware.at(name) +
                                " " + by_bits(address.at("local"), address.at("prefixlen")));
    }
  }
  Lines all;
  for (const auto& [index, lines] : by_index) all.insert(all.end(), lines.begin(), lines.end());
  return all;
}

// A pair of joined interfaces va (index 10, ...:0a) and vb (index 11, ...:0b), without the
// addresses that the kernel gives by itself a while later.
#define PAIR                                                                                 \
  "ip link add name va index 10 address 02:00:00:00:00:0a type veth peer name vb index 11; " \
  "ip link set vb address 02:00:00:00:00:0b; ip link set va addrgenmode none; "              \
  "ip link set vb addrgenmode none; "
#define PAIR_UP PAIR "ip link set va up; ip link set vb up; "

struct NetworkCase {
  const char* name;
  std::string commands;
  bool loopback;
  Lines expected;
};

void PrintTo(const NetworkCase& row, std::ostream* out) { *out << row.name; }

class Network : public testing::TestWithParam<NetworkCase> {};

TEST_P(Network, IsListed) {
  const auto sight = look(GetParam().commands, GetParam().loopback);
  if (!sight) GTEST_SKIP() << "needs root, name spaces of its own and iproute2";
  EXPECT_EQ(GetParam().expected, sight->listed);
  EXPECT_EQ(!GetParam().expected.empty(), sight->result);
  EXPECT_EQ(owed(*sight, GetParam().loopback), sight->listed);
}

const Lines kLoopback = {
    "1 lo 000000000000 127.0.0.1/255.0.0.0 127.0.0.0 v4",
    "1 lo 000000000000 0:0:0:0:0:0:0:1/ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff "
    "0:0:0:0:0:0:0:1 v6"};

INSTANTIATE_TEST_SUITE_P(
    Loopback, Network,
    testing::Values(NetworkCase{"NothingUp", "", true, {}},
                    NetworkCase{"LoopbackAloneLeftOut", "ip link set lo up", false, {}},
                    NetworkCase{"LoopbackAloneAskedFor", "ip link set lo up", true, kLoopback},
                    NetworkCase{"UpWithoutAddress", PAIR_UP, true, {}},
                    NetworkCase{"DownWithAddresses",
                                PAIR "ip addr add 10.0.0.1/24 dev va; ip link set lo up",
                                false,
                                {}}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Addresses, Network,
    testing::Values(
        NetworkCase{"SeveralOfBothFamilies",
                    PAIR_UP
                    "ip addr add 192.168.1.20/24 dev va; ip addr add 10.1.2.3/8 dev va; "
                    "ip addr add 192.168.1.21/24 dev va; "
                    "ip addr add 2001:db8::1/64 dev va nodad; ip addr add 10.9.0.1/30 dev vb",
                    false,
                    {"10 va 02000000000a 192.168.1.20/255.255.255.0 192.168.1.0 v4",
                     "10 va 02000000000a 10.1.2.3/255.0.0.0 10.0.0.0 v4",
                     "10 va 02000000000a 192.168.1.21/255.255.255.0 192.168.1.0 v4",
                     "10 va 02000000000a 2001:db8:0:0:0:0:0:1/ffff:ffff:ffff:ffff:0:0:0:0 "
                     "2001:db8:0:0:0:0:0:0 v6",
                     "11 vb 02000000000b 10.9.0.1/255.255.255.252 10.9.0.0 v4"}},
        NetworkCase{"OneOfAPairDown",
                    PAIR "ip addr add 10.0.0.1/24 dev va; ip addr add 10.0.1.1/24 dev vb; "
                         "ip link set vb up",
                    false,
                    {"11 vb 02000000000b 10.0.1.1/255.255.255.0 10.0.1.0 v4"}},
        NetworkCase{"LabelsBelongToTheirInterface",
                    PAIR_UP
                    "ip addr add 10.0.0.1/24 dev va; ip addr add 10.0.0.2/24 dev va label va:1; "
                    "ip addr add 172.16.0.1/12 dev va label va:two",
                    false,
                    {"10 va 02000000000a 10.0.0.1/255.255.255.0 10.0.0.0 v4",
                     "10 va 02000000000a 172.16.0.1/255.240.0.0 172.16.0.0 v4",
                     "10 va 02000000000a 10.0.0.2/255.255.255.0 10.0.0.0 v4"}},
        NetworkCase{"HostAndPeer",
                    PAIR_UP
                    "ip addr add 10.1.1.1/32 dev va; ip addr add 10.2.2.2 peer 10.3.3.3/32 dev va; "
                    "ip addr add 2001:db8::5/128 dev va nodad",
                    false,
                    {"10 va 02000000000a 10.1.1.1/255.255.255.255 10.1.1.1 v4",
                     "10 va 02000000000a 10.2.2.2/255.255.255.255 10.2.2.2 v4",
                     "10 va 02000000000a "
                     "2001:db8:0:0:0:0:0:5/ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff "
                     "2001:db8:0:0:0:0:0:5 v6"}},
        NetworkCase{"LinkLocalWithoutZone",
                    PAIR_UP
                    "ip addr add fe80::1/64 dev va nodad; ip addr add fe80::1/10 dev vb nodad",
                    false,
                    {"10 va 02000000000a fe80:0:0:0:0:0:0:1/ffff:ffff:ffff:ffff:0:0:0:0 "
                     "fe80:0:0:0:0:0:0:0 v6",
                     "11 vb 02000000000b fe80:0:0:0:0:0:0:1/ffc0:0:0:0:0:0:0:0 "
                     "fe80:0:0:0:0:0:0:0 v6"}},
        NetworkCase{"PrefixOfNoBit",
                    PAIR_UP "ip addr add 10.1.1.1/0 dev va",
                    false,
                    {"10 va 02000000000a 10.1.1.1/0.0.0.0 0.0.0.0 v4"}}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Kinds, Network,
    testing::Values(
        NetworkCase{
            "DummyOrBridge",
            "ip link add name dum0 index 20 address 02:00:00:00:00:0d type dummy 2>/dev/null || "
            "ip link add name dum0 index 20 address 02:00:00:00:00:0d type bridge; "
            "ip link set dum0 addrgenmode none; ip link set dum0 up; "
            "ip addr add 10.0.0.1/24 dev dum0",
            false,
            {"20 dum0 02000000000d 10.0.0.1/255.255.255.0 10.0.0.0 v4"}},
        NetworkCase{"TunHasNoHardwareAddress",
                    PAIR_UP "ip addr add 10.0.0.1/24 dev va; ip tuntap add dev tun0 mode tun; "
                            "ip link set tun0 addrgenmode none; ip addr add 10.8.0.1/24 dev tun0; "
                            "ip link set tun0 up",
                    false,
                    {"10 va 02000000000a 10.0.0.1/255.255.255.0 10.0.0.0 v4"}},
        NetworkCase{"TunAlone",
                    "ip tuntap add dev tun0 mode tun; ip link set tun0 addrgenmode none; "
                    "ip addr add 10.8.0.1/24 dev tun0; ip link set tun0 up",
                    true,
                    {}},
        NetworkCase{
            "NameOfFullLength",
            "ip link add name abcdefghijklmno index 30 address 02:00:00:00:00:0f type bridge; "
            "ip link set abcdefghijklmno addrgenmode none; "
            "ip link set abcdefghijklmno up; "
            "ip addr add 10.0.0.1/24 dev abcdefghijklmno",
            false,
            {"30 abcdefghijklmno 02000000000f 10.0.0.1/255.255.255.0 10.0.0.0 v4"}}),
    [](const auto& row) { return row.param.name; });

TEST(NetworkOfATap, HasAHardwareAddressAndIsListed) {
  const auto sight = look(
      "ip tuntap add dev tap0 mode tap; ip link set tap0 address 02:00:00:00:00:0e; "
      "ip link set tap0 addrgenmode none; ip addr add 10.8.0.1/24 dev tap0; ip link set tap0 up",
      true);
  if (!sight) GTEST_SKIP() << "needs root, name spaces of its own and iproute2";
  EXPECT_TRUE(sight->result);
  EXPECT_THAT(sight->listed, testing::ElementsAre(testing::EndsWith(
                                 " tap0 02000000000e 10.8.0.1/255.255.255.0 10.8.0.0 v4")));
  EXPECT_EQ(owed(*sight, true), sight->listed);
}

// Commands that make 250 pairs with an address on every end and a second one on half of them.
std::string large_network() {
  std::string batch = "ip -batch - <<'BATCH'\n";
  for (int i = 0; i < 250; ++i) {
    const std::string a = "a" + std::to_string(i);
    const std::string b = "b" + std::to_string(i);
    const std::string net = std::to_string(i);
    batch += "link add " + a + " type veth peer name " + b + "\n";
    for (const std::string& name : {a, b}) {
      batch += "link set " + name + " addrgenmode none\nlink set " + name + " up\n";
    }
    batch += "addr add 10.0." + net + ".1/24 dev " + a + "\n";
    batch += "addr add 10.1." + net + ".1/24 dev " + b + "\n";
    batch += "addr add 2001:db8:" + net + "::1/64 dev " + a + " nodad\n";
  }
  return batch + "BATCH\n";
}

TEST(LargeNetwork, EveryAddressOf500InterfacesIsListed) {
  const auto sight = look(large_network(), false);
  if (!sight) GTEST_SKIP() << "needs root, name spaces of its own and iproute2";
  EXPECT_TRUE(sight->result);
  EXPECT_EQ(750U, sight->listed.size());
  EXPECT_EQ(owed(*sight, false), sight->listed);
}

template <class Call>
double seconds(const Call& call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The best of many turns of each, in turns, so that a busy machine burdens both alike.
bool tell_cost() {
  if (unshare(CLONE_NEWNET) != 0) return false;
  if (std::system(large_network().c_str()) != 0) return true;
  double one_list = 1e9;
  double ours = 1e9;
  for (int turn = 0; turn < 40; ++turn) {
    one_list = std::min(one_list, seconds([] {
                          ifaddrs* list = nullptr;
                          if (getifaddrs(&list) == 0) freeifaddrs(list);
                        }));
    ours = std::min(ours, seconds([] { NetInterfaceList(false).initialize(); }));
  }
  std::printf("%f", ours / one_list);
  return true;
}

TEST(LargeNetwork, CostsAFewListsOfTheSystem) {
  if (std::string_view(ORB_WATCHERS) == "coverage")
    GTEST_SKIP() << "every step is counted: not the library's time";
  const auto told = orbtest::in_mount_namespace(tell_cost);
  if (!told) GTEST_SKIP() << "needs root, name spaces of its own and iproute2";
  RecordProperty("lists", *told);
  std::printf("one snapshot costs %s getifaddrs\n", told->c_str());
  EXPECT_GT(std::stod(*told), 0);
  EXPECT_LT(std::stod(*told), 4) << "the benchmark measures it; asking per address costs 500";
}

}  // namespace
