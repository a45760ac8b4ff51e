// tests/system/noproc_test.cpp: the report of a machine whose kernel shows no files.
#include <sys/sysinfo.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <string>

#include "fileutil/timestamp.h"
#include "network/netinterface.h"
#include "portability/handles.h"
#include "portability/threads.h"
#include "sysprops/catalogue.h"
#include "tests/system/surroundings.h"

namespace {

bool without_proc() { return orbtest::cover("/proc"); }
bool without_proc_and_sys() {
  return without_proc() && mount("none", "/sys", "tmpfs", 0, nullptr) == 0;
}

std::wstring wide(const std::string& text) { return {text.begin(), text.end()}; }

// What the kernel is asked by a call stays; what its files alone tell keeps the value of a record
// that was never filled.
void expect_what_calls_tell() {
  struct sysinfo memory {};
  utsname kernel{};
  ASSERT_EQ(0, sysinfo(&memory));
  ASSERT_EQ(0, uname(&kernel));
  auto values = orbtest::whole_report();
  EXPECT_EQ(orbtest::kReportKeys, values.size());
  EXPECT_EQ(wide(std::to_string(uint64_t{memory.totalram} * memory.mem_unit)),
            values[L"TotalPhysicalMemory"]);
  EXPECT_NE(L"N/A", values[L"FreeMemory"]);
  EXPECT_EQ(std::to_wstring(sysconf(_SC_NPROCESSORS_ONLN)), values[L"NumOfCPU"]);
  EXPECT_EQ(0U, values[L"CPUType"].find(wide(kernel.machine)));
  EXPECT_EQ(L"0", values[L"NumberOfFileSystems"]);
  EXPECT_EQ(L"0.00", values[L"TotalDiskSpace"]);
  EXPECT_EQ(L"0.00", values[L"FreeDiskSpace"]);
  EXPECT_EQ(L"Linux", values[L"OSType"]);
}

TEST(NoProc, TheReportTellsWhatCallsTell) { EXPECT_IN(without_proc, expect_what_calls_tell); }

TEST(NoProc, NorSysMakesADifferenceButForTheProcessor) {
  EXPECT_IN(without_proc_and_sys, [] {
    expect_what_calls_tell();
    utsname kernel{};
    ASSERT_EQ(0, uname(&kernel));
    EXPECT_EQ(wide(kernel.machine), voxcomn_get_cpu_type());
    quillon_com::orb::sysprops::CPUInformation record;
    EXPECT_TRUE(quillon_com::orb::sysprops::ISysProps().GetCPUInformation(record));
    EXPECT_EQ(L"N/A", record.cpuSpeed);
  });
}

TEST(NoProc, InterfacesAreTheSame) {
  NetInterfaceList before(true);
  const bool any = before.initialize();
  EXPECT_IN(without_proc_and_sys, [&] {
    NetInterfaceList list(true);
    EXPECT_EQ(any, list.initialize());
    EXPECT_EQ(before.getIndexes(), list.getIndexes());
  });
}

TEST(NoProc, UptimeThreadsAndWaitsGoOn) {
  const long before = quillon_com::orb::voxcomn_get_system_uptime();
  EXPECT_IN(without_proc_and_sys, [before] {
    const long uptime = quillon_com::orb::voxcomn_get_system_uptime();
    EXPECT_LE(before, uptime + 1);
    EXPECT_GE(before + 60, uptime);
    void* const thread = voxBeginThread(
        nullptr, 0, [](void* argument) { return argument; }, nullptr, 0, nullptr);
    EXPECT_EQ(uint64_t{WAIT_OBJECT_0}, voxWaitForSingleObject(thread, INFINITE));
    EXPECT_EQ(1, voxCloseHandle(thread));
  });
}

}  // namespace
