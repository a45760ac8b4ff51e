// benchmarks/network_benchmark.cpp: snapshots and searches of up to 500 interfaces.
//
// The program makes networks of its own, which takes root; without it, it measures the machine's
// own interfaces and says so. Half as many addresses again as interfaces: every other one has two.
// The plain form of a list is one getifaddrs.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <sched.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "benchmarks/family.h"
#include "network/ipv6.h"
#include "network/netinterface.h"

namespace {

// A network name space with `interfaces` of our own, pairs of a0, b0, a1, b1 and so on.
class Network {
 public:
  explicit Network(int interfaces) : interfaces_(interfaces) {
    if (unshare(CLONE_NEWNET) == 0 && fill())
      descriptor_ = open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC);
  }
  bool is_there() const { return descriptor_ >= 0; }
  // From now on the calling thread is in this network.
  void enter(benchmark::State& state) const {
    if (setns(descriptor_, CLONE_NEWNET) != 0) state.SkipWithError("the network is not there");
  }
  int interfaces() const { return interfaces_; }
  // Of the interface that is listed last.
  std::string last_name() const {
    return (interfaces_ % 2 == 0 ? "b" : "a") + std::to_string((interfaces_ - 1) / 2);
  }
  std::string last_address() const {
    return (interfaces_ % 2 == 0 ? "10.1." : "10.0.") + std::to_string((interfaces_ - 1) / 2) +
           ".1";
  }

 private:
  bool fill() const {
    FILE* ip = popen("ip -batch -", "w");
    if (ip == nullptr) return false;
    for (int i = 0; i < interfaces_; ++i) {
      const int pair = i / 2;
      const char end = i % 2 == 0 ? 'a' : 'b';
      if (end == 'a') {
        std::fprintf(ip, "link add a%d type veth peer name b%d\n", pair, pair);
        std::fprintf(ip, "addr add 2001:db8:%d::1/64 dev a%d nodad\n", pair, pair);
      }
      std::fprintf(ip, "link set %c%d addrgenmode none\nlink set %c%d up\n", end, pair, end, pair);
      std::fprintf(ip, "addr add 10.%d.%d.1/24 dev %c%d\n", i % 2, pair, end, pair);
    }
    return pclose(ip) == 0;
  }

  int interfaces_;
  int descriptor_ = -1;
};

void system_list(benchmark::State& state) {
  for (auto _ : state) {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) state.SkipWithError("getifaddrs failed");
    benchmark::DoNotOptimize(list);
    freeifaddrs(list);
  }
}

void snapshot_ours(benchmark::State& state) {
  for (auto _ : state) {
    NetInterfaceList list(false);
    benchmark::DoNotOptimize(list.initialize());
  }
}

void hardware_ours(benchmark::State& state, const std::string& name) {
  std::string mac;
  for (auto _ : state) benchmark::DoNotOptimize(getMacAddr(mac, name));
}

void find_ours(benchmark::State& state, const std::string& address) {
  NetInterfaceList list(true);
  list.initialize();
  NetInterface found;
  for (auto _ : state) {
    benchmark::DoNotOptimize(getNetInterfaceFromIPAddress(found, address, list));
  }
}

template <class Run>
void add(const std::string& name, const Network& network, Run run) {
  const auto measure = [=](benchmark::State& state) {
    network.enter(state);
    run(state);
    orbbench::size(state, network.interfaces());
  };
  benchmark::RegisterBenchmark(name.c_str(), measure)->Unit(benchmark::kMicrosecond);
}

constexpr int kMany = 500;  // beside one list of the system, this many have a goal

void add_rows(const Network& network) {
  const int interfaces = network.interfaces();
  const std::string size = "/" + std::to_string(interfaces) + "_interfaces/";
  add("snapshot" + size + "ours", network, [=](benchmark::State& state) {
    snapshot_ours(state);
    if (interfaces == kMany) orbbench::goal(state, "goal_ratio_plain", 2);
  });
  add("snapshot" + size + "plain", network, system_list);
  add("hardware_address" + size + "ours", network,
      [name = network.last_name()](benchmark::State& state) { hardware_ours(state, name); });
  add("hardware_address" + size + "plain", network, system_list);
  add("find_address" + size + "ours", network,
      [address = network.last_address()](benchmark::State& state) { find_ours(state, address); });
}

// False when this process may not make networks.
bool add_networks() {
  for (const int interfaces : {1, 5, 20, 100, kMany}) {
    const Network network(interfaces);
    if (!network.is_there()) return false;
    add_rows(network);
  }
  return true;
}

void add_machine() {
  std::fprintf(stderr, "no network of our own: measuring this machine's interfaces\n");
  benchmark::RegisterBenchmark("snapshot/machine/ours", snapshot_ours);
  benchmark::RegisterBenchmark("snapshot/machine/plain", system_list);
}

constexpr char kAddress[] = "2001:db8::8:800:200c:417a";

// The peer of expandIPV6Address: to bytes and back, in the system's short spelling.
void expand_system(benchmark::State& state) {
  for (auto _ : state) {
    in6_addr address;
    char text[INET6_ADDRSTRLEN];
    inet_pton(AF_INET6, kAddress, &address);
    benchmark::DoNotOptimize(inet_ntop(AF_INET6, &address, text, sizeof text));
  }
}

void expand_ours(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(expandIPV6Address(kAddress));
}

void subnet_ours(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        calculateSubNetAddrForV6("2001:db8:0:0:8:800:200c:417a", "ffff:ffff:ffff:ffff:0:0:0:0"));
  }
}

BENCHMARK(expand_ours)->Name("expand_ipv6/ours");
BENCHMARK(expand_system)->Name("expand_ipv6/inet_pton");
BENCHMARK(subnet_ours)->Name("subnet_ipv6/ours");

}  // namespace

int main(int argc, char** argv) {
  if (!add_networks()) add_machine();
  return orbbench::run_family(argc, argv);
}
