// tests/sysprops/reportcost_test.cpp: what reports leave behind, and what they never start.
#include <dirent.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <malloc.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "sysprops/records.h"
#include "sysprops/report.h"
#include "tests/support/forwarding_system.h"
#include "tests/support/silent_output.h"

namespace {

using namespace quillon_com::orb::sysprops;
namespace platform = quillon_com::orb::platform;

// The sanitizers keep freed memory and are slow; they have leak checks of their own.
constexpr bool kSanitized = ORB_SANITIZED;
constexpr int kReports = kSanitized ? 300 : 10000;

// The running machine; where its resolver takes its time, it is not asked.
class PromptHost : public orbtest::ForwardingSystem {
 public:
  PromptHost() : ForwardingSystem(platform::host()) {
    std::string name, official;
    const auto start = std::chrono::steady_clock::now();
    host_name(&name);
    ForwardingSystem::official_host_name(name, &official);
    prompt_ = std::chrono::steady_clock::now() - start < std::chrono::milliseconds(5);
  }
  bool official_host_name(const std::string& name, std::string* official) const override {
    if (prompt_) return ForwardingSystem::official_host_name(name, official);
    *official = name + ".example";
    return true;
  }

 private:
  bool prompt_ = false;
};

void run_reports(const platform::System& system, int count) {
  for (int i = 0; i < count; ++i) {
    CPUInformation cpu;
    NetworkInformation network;
    MemoryInformation memory;
    OSInformation os;
    DiskInformation disk;
    MiscInformation misc;
    const Records records{cpu, network, memory, os, disk, misc};
    collect_records(system, records);
    PropertyMap properties;
    write_report(records, properties);
    if (properties.size() < 29) std::abort();
  }
}

size_t entries_of(const char* folder) {
  size_t count = 0;
  DIR* listing = opendir(folder);
  if (listing == nullptr) return count;
  while (readdir(listing) != nullptr) ++count;
  closedir(listing);
  return count;
}

long resident_bytes() {
  long pages = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * sysconf(_SC_PAGESIZE);
}

TEST(ReportCost, TenThousandReportsLeaveNothingBehind) {
  const orbtest::SilentOutput silent;
  const PromptHost system;
  run_reports(system, 200);  // the C library opens and keeps what it keeps
  const size_t descriptors = entries_of("/proc/self/fd");
  const size_t threads = entries_of("/proc/self/task");
  const size_t live = mallinfo2().uordblks;
  const long resident = resident_bytes();
  run_reports(system, kReports);
  EXPECT_EQ(descriptors, entries_of("/proc/self/fd"));
  EXPECT_EQ(threads, entries_of("/proc/self/task"));
  EXPECT_GE(live + 16384, mallinfo2().uordblks);
  if (!kSanitized) {
    EXPECT_GE(resident + (1 << 20), resident_bytes());
  }
}

TEST(ReportCost, TheMeasuresSeeALeak) {
  const size_t live = mallinfo2().uordblks;
  const size_t descriptors = entries_of("/proc/self/fd");
  volatile char* kept = static_cast<char*>(malloc(100000));
  kept[0] = 1;
  const int descriptor = dup(STDERR_FILENO);
  EXPECT_EQ(descriptors + 1, entries_of("/proc/self/fd"));
  if (!kSanitized) {
    EXPECT_LE(live + 100000, mallinfo2().uordblks);
  }
  close(descriptor);
  free(const_cast<char*>(kept));
}

// From here on this process ends by SIGSYS where it starts a process or a thread.
bool forbid_processes() {
  const auto if_number_is = [](unsigned number, unsigned char skipped) {
    return sock_filter{BPF_JMP | BPF_JEQ | BPF_K, skipped, 0, number};
  };
  sock_filter rules[] = {
      {BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
      if_number_is(SYS_clone, 4),
      if_number_is(SYS_clone3, 3),
      if_number_is(SYS_execve, 2),
      if_number_is(SYS_execveat, 1),
      {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW},
      {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_KILL_PROCESS},
  };
  const sock_fprog program{sizeof rules / sizeof rules[0], rules};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

// Whether this process never had a child, not even one that has ended and been waited for.
bool childless() {
  rusage used{};
  getrusage(RUSAGE_CHILDREN, &used);
  return used.ru_minflt == 0 && used.ru_nvcsw == 0 && waitpid(-1, nullptr, WNOHANG) == -1 &&
         errno == ECHILD;
}

// The wait status of a child of this test that runs `work` under the filter.
template <class Work>
int status_under_filter(Work work) {
  fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    if (!forbid_processes()) _exit(3);
    work();
    _exit(childless() ? 0 : 4);
  }
  int status = -1;
  waitpid(child, &status, 0);
  return status;
}

TEST(ReportCost, NoReportStartsAProcessOrAThread) {
  const int status = status_under_filter([] {
    const orbtest::SilentOutput silent;
    ISysProps props;
    PropertyMap properties;
    FileSystemMap file_systems;
    props.GetAllSystemProperties(properties);
    props.GetAllSystemProperties(properties, file_systems);
    for (const auto& property : properties) props.GetOneSystemProperty(property.first);
  });
  ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
  EXPECT_EQ(0, WEXITSTATUS(status));
}

TEST(ReportCost, TheFilterSeesAShellCommand) {
  const int status = status_under_filter([] {
    FILE* pipe = popen("true", "r");
    if (pipe != nullptr) pclose(pipe);
  });
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(SIGSYS, WTERMSIG(status));
}

TEST(ReportCost, TheFilterSeesAFork) {
  const int status = status_under_filter([] {
    if (fork() == 0) _exit(0);
  });
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(SIGSYS, WTERMSIG(status));
}

}  // namespace
