// tests/platform/linux_memory_test.cpp: every fact when memory runs out at its n-th request.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <filesystem>
#include <functional>
#include <new>
#include <string>

#include "platform/linux_system.h"
#include "tests/support/faults.h"
#include "tests/support/machine_roots.h"

namespace {

using namespace quillon_com::orb::platform;

size_t open_descriptors() {
  size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    ++count;
  }
  return count;
}

struct FactCase {
  const char* name;
  std::function<void(const System&)> ask;
};

class Memory : public testing::TestWithParam<FactCase> {};

// Running out throws or is overcome; neither leaves a descriptor, a child or (so the leak check
// says) memory behind.
TEST_P(Memory, LeavesNothingBehind) {
  orbtest::TempDir root;
  orbtest::x86_laptop(root);
  root.write("/proc/device-tree/cpus/cpu@0/reg", "long enough not to be kept in place");
  const LinuxSystem files(root.path());
  const LinuxSystem running;
  for (const System* system :
       {static_cast<const System*>(&files), static_cast<const System*>(&running)}) {
    GetParam().ask(*system);
    const size_t before = open_descriptors();
    orbtest::for_each_memory_fault([&](size_t nth, orbtest::Failing failing) {
      size_t failures = 0;
      {
        orbtest::MemoryFaults faults(nth, failing);
        try {
          GetParam().ask(*system);
        } catch (const std::bad_alloc&) {
        }
        failures = faults.failures();
      }
      EXPECT_EQ(before, open_descriptors()) << "request " << nth;
      EXPECT_EQ(-1, waitpid(-1, nullptr, WNOHANG)) << "request " << nth;
      return failures;
    });
  }
}

INSTANTIATE_TEST_SUITE_P(Facts, Memory,
                         testing::Values(FactCase{"Interfaces",
                                                  [](const System& system) {
                                                    std::vector<InterfaceEntry> entries;
                                                    system.interface_entries(&entries);
                                                  }},
                                         FactCase{"Names",
                                                  [](const System& system) {
                                                    KernelNames names;
                                                    std::string name;
                                                    system.kernel_names(&names);
                                                    system.host_name(&name);
                                                    system.domain_name(&name);
                                                  }},
                                         FactCase{"OfficialName",
                                                  [](const System& system) {
                                                    std::string name;
                                                    system.official_host_name("localhost", &name);
                                                  }},
                                         FactCase{"Sessions",
                                                  [](const System& system) {
                                                    SessionEntry entry;
                                                    system.rewind_sessions();
                                                    while (system.next_session_entry(&entry)) {
                                                    }
                                                  }},
                                         FactCase{"Group",
                                                  [](const System& system) {
                                                    std::string group;
                                                    system.primary_group("root", &group);
                                                  }},
                                         FactCase{"Command",
                                                  [](const System& system) {
                                                    std::string output;
                                                    system.command_output("yes", 3000, &output);
                                                  }},
                                         FactCase{"File",
                                                  [](const System& system) {
                                                    std::string bytes;
                                                    system.file_bytes("/proc/cpuinfo", 3000,
                                                                      &bytes);
                                                  }},
                                         FactCase{"Release",
                                                  [](const System& system) {
                                                    ReleaseTexts texts;
                                                    system.release_texts(&texts);
                                                  }},
                                         FactCase{"Processor",
                                                  [](const System& system) {
                                                    ProcessorTexts texts;
                                                    system.processor_texts(&texts);
                                                    system.chassis();
                                                  }},
                                         FactCase{"MemoryTable",
                                                  [](const System& system) {
                                                    uint64_t number = 0;
                                                    system.total_memory(&number);
                                                    system.free_memory(&number, &number);
                                                  }},
                                         FactCase{"Volumes",
                                                  [](const System& system) { system.volumes(); }}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
