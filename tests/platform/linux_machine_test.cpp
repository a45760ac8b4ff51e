// tests/platform/linux_machine_test.cpp: the running machine's facts against a second source.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "platform/linux_system.h"
#include "tests/support/temp_dir.h"

namespace {

using namespace quillon_com::orb::platform;

// What a tool of the system prints, to its end; empty when it is not installed.
std::string printed_by(const std::string& command) {
  std::string text;
  return host().command_output(command, 1 << 20, &text) ? text : "";
}

std::string word_printed_by(const std::string& command) {
  std::string text = printed_by(command);
  while (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

TEST(ThisMachine, NamesAsUnameAndHostnameSay) {
  KernelNames names;
  ASSERT_TRUE(host().kernel_names(&names));
  EXPECT_EQ(word_printed_by("uname -n"), names.node);
  EXPECT_EQ(word_printed_by("uname -m"), names.machine);
  EXPECT_EQ(word_printed_by("uname -r"), names.release);
  std::string name;
  ASSERT_TRUE(host().host_name(&name));
  if (program_exists("hostname")) {
    EXPECT_EQ(word_printed_by("hostname"), name);
  }
}

TEST(ThisMachine, DomainAsTheKernelSays) {
  std::string kernel;
  ASSERT_TRUE(host().file_bytes("/proc/sys/kernel/domainname", 1024, &kernel));
  while (!kernel.empty() && kernel.back() == '\n') kernel.pop_back();
  std::string domain = "old";
  ASSERT_TRUE(host().kernel_domain(&domain));
  EXPECT_EQ(kernel == "(none)" ? "" : kernel, domain);
  ASSERT_TRUE(host().domain_name(&domain));
  EXPECT_EQ(kernel == "(none)" ? "" : kernel, domain);
}

TEST(ThisMachine, OfficialNameAsGetentSays) {
  std::istringstream line(printed_by("getent ahostsv4 localhost"));
  std::string address, kind, official;
  ASSERT_TRUE(line >> address >> kind >> official);
  std::string name;
  ASSERT_TRUE(host().official_host_name("localhost", &name));
  EXPECT_EQ(official, name);
}

TEST(ThisMachine, ProcessorsAsNprocSays) {
  int count = 0;
  ASSERT_TRUE(host().processor_count(&count));
  EXPECT_EQ(word_printed_by("nproc --all"), std::to_string(count));
}

TEST(ThisMachine, ModelIsALineOfTheProcessorsText) {
  ProcessorTexts texts;
  ASSERT_TRUE(host().processor_texts(&texts));
  EXPECT_EQ(word_printed_by("uname -m"), texts.architecture);
  const std::string model =
      word_printed_by("sed -n 's/^model name[[:blank:]]*: //p' /proc/cpuinfo | head -n 1");
  if (model.empty()) GTEST_SKIP() << "this processor states no model name";
  EXPECT_EQ(model, texts.model);
}

TEST(ThisMachine, MemoryAsTheKernelSays) {
  const std::string table = printed_by("cat /proc/meminfo");
  unsigned long long total = 0;
  ASSERT_EQ(1, sscanf(table.c_str(), "MemTotal: %llu kB", &total));
  uint64_t bytes = 0;
  ASSERT_TRUE(host().total_memory(&bytes));
  EXPECT_EQ(total * 1024, bytes);
  uint64_t pages = 0;
  uint64_t page_size = 0;
  ASSERT_TRUE(host().free_memory(&pages, &page_size));
  const uint64_t free = pages * page_size;
  EXPECT_GT(free, 0u);
  EXPECT_LE(free, bytes);
  const double before = std::strtod(table.c_str() + table.find("MemFree:") + 8, nullptr) * 1024;
  EXPECT_NEAR(before, static_cast<double>(free), static_cast<double>(bytes) / 10);
}

// A machine without a memory table is asked through the kernel.
class LiveWithoutFiles : public LinuxSystem {
 public:
  LiveWithoutFiles() : LinuxSystem("/nowhere/at-all") {}

 protected:
  bool is_running_machine() const override { return true; }
};

TEST(ThisMachine, MemoryWithoutTheTable) {
  const LiveWithoutFiles system;
  uint64_t from_table = 0;
  uint64_t from_kernel = 0;
  ASSERT_TRUE(host().total_memory(&from_table));
  ASSERT_TRUE(system.total_memory(&from_kernel));
  EXPECT_EQ(from_table, from_kernel);
  uint64_t pages = 0;
  uint64_t page_size = 0;
  uint64_t other_pages = 0;
  uint64_t other_size = 0;
  ASSERT_TRUE(host().free_memory(&pages, &page_size));
  ASSERT_TRUE(system.free_memory(&other_pages, &other_size));
  EXPECT_NEAR(static_cast<double>(pages * page_size), static_cast<double>(other_pages * other_size),
              static_cast<double>(from_table) / 10);
}

// What a table does not state is the kernel's, what it states is not.
TEST(ThisMachine, MemoryWithHalfATable) {
  class LiveWithTable : public LinuxSystem {
   public:
    using LinuxSystem::LinuxSystem;

   protected:
    bool is_running_machine() const override { return true; }
  };
  orbtest::TempDir root;
  const LiveWithTable system(root.path());
  root.write("/proc/meminfo", "MemTotal: 5 kB\n");
  MemoryFigures figures = system.memory_figures();
  EXPECT_EQ(5120u, figures.total);
  EXPECT_TRUE(figures.free_pages.has_value());
  uint64_t total = 0;
  ASSERT_TRUE(host().total_memory(&total));
  root.write("/proc/meminfo", "MemFree: 5 kB\n");
  figures = system.memory_figures();
  EXPECT_EQ(total, figures.total);
  EXPECT_EQ(5u, figures.free_pages);
  EXPECT_EQ(1024u, figures.page_size);
}

TEST(ThisMachine, ReleaseAsTheShellReadsIt) {
  ReleaseTexts texts;
  if (!host().release_texts(&texts)) GTEST_SKIP() << "a version list stands on this machine";
  for (const char* name : {"NAME", "VERSION_ID", "ID", "PRETTY_NAME", "HOME_URL"}) {
    const std::string said = word_printed_by(
        std::string("printf x >/dev/null; . /etc/os-release; printf %s \"$") + name + "\"");
    EXPECT_EQ(said, texts.fields[name]) << name;
  }
}

TEST(ThisMachine, VolumesAsDfSays) {
  const auto volumes = host().volumes();
  ASSERT_FALSE(volumes.empty());
  for (const Volume& volume : volumes) {
    std::istringstream lines(
        printed_by("df -B 1024 --output=size,target '" + volume.mount_point + "'"));
    std::string heading;
    std::getline(lines, heading);
    uint64_t kilobytes = 0;
    std::string target;
    ASSERT_TRUE(std::getline(lines >> kilobytes >> std::ws, target)) << volume.mount_point;
    EXPECT_EQ(volume.mount_point, target);
    EXPECT_EQ(kilobytes, volume.blocks * volume.block_size / 1024) << target;
    EXPECT_LE(volume.free_blocks, volume.blocks);
    EXPECT_TRUE(volume.local);
  }
}

TEST(ThisMachine, InterfacesAsIpSays) {
  if (!program_exists("ip")) GTEST_SKIP() << "the tool `ip` is not installed";
  std::multimap<std::string, std::string> expected;
  for (const auto& link : nlohmann::json::parse(printed_by("ip -j addr"))) {
    if (link.contains("address") && link["address"].get<std::string>().size() == 17) {
      expected.emplace(link["ifname"], link["address"]);
    }
  }
  std::multimap<std::string, std::string> found;
  std::vector<InterfaceEntry> entries;
  ASSERT_TRUE(host().interface_entries(&entries));
  for (const InterfaceEntry& entry : entries) {
    if (!entry.link_address) continue;
    const auto& b = *entry.link_address;
    char text[18];
    snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", b[0], b[1], b[2], b[3], b[4],
             b[5]);
    found.emplace(entry.name, text);
    EXPECT_NE(0u, host().interface_index(entry.name)) << entry.name;
  }
  EXPECT_EQ(expected, found);
}

TEST(ThisMachine, EveryFactLeavesDescriptorsAsTheyWere) {
  const auto count = [] {
    size_t open = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/fd")) {
      ++open;
    }
    return open;
  };
  const auto ask = [] {
    std::vector<InterfaceEntry> entries;
    host().interface_entries(&entries);
    ProcessorTexts processor;
    host().processor_texts(&processor);
    host().chassis();
    ReleaseTexts release;
    host().release_texts(&release);
    uint64_t number = 0;
    host().total_memory(&number);
    host().free_memory(&number, &number);
    host().volumes();
    std::string name;
    host().official_host_name("localhost", &name);
    SessionEntry session;
    while (host().next_session_entry(&session)) {
    }
    host().rewind_sessions();
  };
  ask();  // what the C library keeps open after its first use
  const size_t before = count();
  for (int i = 0; i < 20; ++i) ask();
  EXPECT_EQ(before, count());
}

}  // namespace
