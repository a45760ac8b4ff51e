// benchmarks/network_benchmark.cpp: a snapshot of 500 interfaces beside one list of the system.
//
// The program makes 250 pairs of interfaces with 750 addresses in a network of its own, which
// takes root; without it, it measures the machine's own interfaces and says so. A name is
// operation/who.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <ifaddrs.h>
#include <sched.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "network/ipv6.h"
#include "network/netinterface.h"

namespace {

bool make_network() {
  if (unshare(CLONE_NEWNET) != 0) return false;
  FILE* ip = popen("ip -batch -", "w");
  if (ip == nullptr) return false;
  for (int i = 0; i < 250; ++i) {
    std::fprintf(ip, "link add a%d type veth peer name b%d\n", i, i);
    for (const char end : {'a', 'b'}) {
      std::fprintf(ip, "link set %c%d addrgenmode none\nlink set %c%d up\n", end, i, end, i);
    }
    std::fprintf(ip, "addr add 10.0.%d.1/24 dev a%d\naddr add 10.1.%d.1/24 dev b%d\n", i, i, i, i);
    std::fprintf(ip, "addr add 2001:db8:%d::1/64 dev a%d nodad\n", i, i);
  }
  return pclose(ip) == 0;
}

void snapshot_system(benchmark::State& state) {
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

void hardware_ours(benchmark::State& state) {
  std::string mac;
  for (auto _ : state) benchmark::DoNotOptimize(getMacAddr(mac, "b249"));
}

void find_ours(benchmark::State& state) {
  NetInterfaceList list(true);
  list.initialize();
  NetInterface found;
  for (auto _ : state) {
    benchmark::DoNotOptimize(getNetInterfaceFromIPAddress(found, "10.1.249.1", list));
  }
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

BENCHMARK(snapshot_ours)->Name("snapshot/orbcommon")->Unit(benchmark::kMicrosecond);
BENCHMARK(snapshot_system)->Name("snapshot/getifaddrs")->Unit(benchmark::kMicrosecond);
BENCHMARK(hardware_ours)->Name("hardware_address/orbcommon")->Unit(benchmark::kMicrosecond);
BENCHMARK(find_ours)->Name("find_address/orbcommon")->Unit(benchmark::kMicrosecond);
BENCHMARK(expand_ours)->Name("expand_ipv6/orbcommon");
BENCHMARK(expand_system)->Name("expand_ipv6/inet_pton");
BENCHMARK(subnet_ours)->Name("subnet_ipv6/orbcommon");

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  const bool large = make_network();
  if (!large) std::fprintf(stderr, "no network of our own: measuring this machine's interfaces\n");
  benchmark::AddCustomContext("network",
                              large ? "500 interfaces, 750 addresses" : "this machine's");
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
