// benchmarks/report_benchmark.cpp: the whole property report, its collectors and single answers.
//
// Beside them stands what the facts cost that no report can do without: one look-up of the host's
// name, one list of the interfaces and one reading of the kernel's tables.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <netdb.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <stdexcept>
#include <string>

#include "benchmarks/family.h"
#include "sysprops/catalogue.h"

namespace {

using namespace quillon_com::orb::sysprops;
using PropertyMap = std::map<std::wstring, std::wstring>;

constexpr char kFirstReport[] = "--first-report";

// Standard output goes nowhere while it lives: the user collector writes lines to it.
class Silence {
 public:
  Silence() {
    fflush(stdout);
    kept_ = dup(STDOUT_FILENO);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
  }
  ~Silence() {
    fflush(stdout);
    dup2(kept_, STDOUT_FILENO);
    close(kept_);
  }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  int kept_;
};

double report_seconds() {
  const auto start = std::chrono::steady_clock::now();
  ISysProps props;
  PropertyMap properties;
  props.GetAllSystemProperties(properties);
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
  if (properties.size() < 29) throw std::logic_error("the report lacks keys");
  return taken.count();
}

// What a fresh process measures for its first report; it prints nanoseconds.
int print_first_report() {
  double seconds = 0;
  {
    const Silence silence;
    seconds = report_seconds();
  }
  printf("%.0f\n", seconds * 1e9);
  return 0;
}

double seconds_of_fresh_process() {
  char self[PATH_MAX] = {};
  if (readlink("/proc/self/exe", self, sizeof self - 1) < 0) throw std::runtime_error("no path");
  FILE* pipe = popen(("'" + std::string(self) + "' " + kFirstReport).c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("no process");
  double nanoseconds = 0;
  const int read = fscanf(pipe, "%lf", &nanoseconds);
  if (pclose(pipe) != 0 || read != 1) throw std::runtime_error("no figure");
  return nanoseconds / 1e9;
}

void first_report(benchmark::State& state) {
  for (auto _ : state) state.SetIterationTime(seconds_of_fresh_process());
  orbbench::goal(state, "goal_ns", 1e6);
}
BENCHMARK(first_report)->UseManualTime()->Iterations(50)->Unit(benchmark::kMicrosecond);

void repeated_report(benchmark::State& state) {
  const Silence silence;
  for (auto _ : state) benchmark::DoNotOptimize(report_seconds());
  orbbench::goal(state, "goal_ns", 3e5);
}
BENCHMARK(repeated_report)->Unit(benchmark::kMicrosecond);

template <class Record, bool (ISysProps::*collect)(Record&)>
void collector(benchmark::State& state) {
  const Silence silence;
  ISysProps props;
  for (auto _ : state) {
    Record record;
    benchmark::DoNotOptimize((props.*collect)(record));
  }
}
BENCHMARK(collector<NetworkInformation, &ISysProps::GetNetworkInformation>)->Name("network");
BENCHMARK(collector<CPUInformation, &ISysProps::GetCPUInformation>)->Name("processor");
BENCHMARK(collector<MemoryInformation, &ISysProps::GetMemoryInformation>)->Name("memory");
BENCHMARK(collector<DiskInformation, &ISysProps::GetDiskInformation>)->Name("disk");
BENCHMARK(collector<MiscInformation, &ISysProps::GetMiscInformation>)->Name("miscellaneous");
BENCHMARK(collector<OSInformation, &ISysProps::GetOSInformation>)->Name("operating_system");

void answer(benchmark::State& state, std::wstring (*wrapper)()) {
  const Silence silence;
  for (auto _ : state) benchmark::DoNotOptimize(wrapper());
}
BENCHMARK_CAPTURE(answer, cpu_speed, voxcomn_get_cpu_speed);
BENCHMARK_CAPTURE(answer, number_of_processors, voxcomn_get_number_of_processors);
BENCHMARK_CAPTURE(answer, computer_name, voxcomn_get_computer_name);
BENCHMARK_CAPTURE(answer, ip_address, voxcomn_get_ip_address);
BENCHMARK_CAPTURE(answer, fqdn_address, voxcomn_get_fqdn_address);
BENCHMARK_CAPTURE(answer, free_memory, voxcomn_get_free_memory);
BENCHMARK_CAPTURE(answer, os_version, voxcomn_get_os_version);
BENCHMARK_CAPTURE(answer, language, voxcomn_get_language);

// The floor: the same facts, read and thrown away.
void read_away(const char* path) {
  const int descriptor = open(path, O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return;
  char bytes[8192];
  while (read(descriptor, bytes, sizeof bytes) > 0) continue;
  close(descriptor);
}

void facts_alone(benchmark::State& state) {
  char name[256] = {};
  gethostname(name, sizeof name - 1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(gethostbyname(name));
    ifaddrs* interfaces = nullptr;
    if (getifaddrs(&interfaces) == 0) freeifaddrs(interfaces);
    for (const char* path :
         {"/proc/cpuinfo", "/proc/meminfo", "/proc/self/mountinfo", "/etc/os-release"}) {
      read_away(path);
    }
  }
}
BENCHMARK(facts_alone)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && strcmp(argv[1], kFirstReport) == 0) return print_first_report();
  return orbbench::run_family(argc, argv);
}
