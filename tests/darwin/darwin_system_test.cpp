// tests/darwin/darwin_system_test.cpp: the single facts of a scripted Mac.
#include "platform/darwin_system.h"

#include <sys/sysctl.h>

#include "tests/darwin/scripted_macos.h"

namespace orbtest {
namespace {

namespace seam = quillon_com::orb::platform;

constexpr std::pair kCount{CTL_HW, HW_NCPU};
constexpr std::pair kMemory{CTL_HW, HW_MEMSIZE};
constexpr std::pair kBoot{CTL_KERN, KERN_BOOTTIME};
constexpr std::pair kDomain{CTL_KERN, KERN_NISDOMAINNAME};

class MacFacts : public MacTest {
 protected:
  const seam::DarwinSystem system{};
};

TEST_F(MacFacts, TheHostIsTheMac) {
  EXPECT_NE(nullptr, dynamic_cast<const seam::DarwinSystem*>(&seam::host()));
  EXPECT_EQ(&seam::host(), &seam::host());
}

TEST_F(MacFacts, TheProcessorCountIsANumberOf32Bits) {
  int count = -3;
  EXPECT_FALSE(system.processor_count(&count));
  EXPECT_EQ(-3, count);
  mac().kernel_values[kCount] = bytes_of(int32_t{10});
  EXPECT_TRUE(system.processor_count(&count));
  EXPECT_EQ(10, count);
}

TEST_F(MacFacts, ACountOf64BitsDoesNotFit) {
  mac().kernel_values[kCount] = bytes_of(int64_t{10});
  int count = -3;
  EXPECT_FALSE(system.processor_count(&count));
  EXPECT_EQ(-3, count);
}

TEST_F(MacFacts, TheMemorySizeIsANumberOf64Bits) {
  uint64_t bytes = 77;
  EXPECT_FALSE(system.total_memory(&bytes));
  EXPECT_EQ(77u, bytes);
  mac().kernel_values[kMemory] = bytes_of(uint64_t{1649267441664});  // 1.5 TiB
  EXPECT_TRUE(system.total_memory(&bytes));
  EXPECT_EQ(1649267441664u, bytes);
}

TEST_F(MacFacts, AMemorySizeOf32BitsFillsTheLowHalfAlone) {
  mac().kernel_values[kMemory] = bytes_of(uint32_t{0x80000000});
  uint64_t bytes = ~uint64_t{0};
  EXPECT_TRUE(system.total_memory(&bytes));
  EXPECT_EQ(0x80000000u, bytes);
}

TEST_F(MacFacts, TheBootTimeIsTheSecondsOfAMoment) {
  time_t boot = 77;
  EXPECT_FALSE(system.boot_time(&boot));
  EXPECT_EQ(77, boot);
  mac().kernel_values[kBoot] = bytes_of(timeval{1700000000, 999999});
  EXPECT_TRUE(system.boot_time(&boot));
  EXPECT_EQ(1700000000, boot);
}

TEST_F(MacFacts, TheModelEndsAtItsTerminator) {
  struct Row {
    const char* name;
    std::string bytes;
    std::optional<std::string> model;
  };
  const Row rows[] = {
      {"Terminated", std::string("MacBookAir10,1\0", 15), "MacBookAir10,1"},
      {"GarbageBehindTheTerminator", std::string("Mac14,2\0xx", 10), "Mac14,2"},
      {"Unterminated", "Mac14,2", "Mac14,2"},
      {"Empty", "", ""},
      {"256BytesWithoutTerminator", std::string(256, 'm'), std::string(256, 'm')},
      {"257BytesDoNotFit", std::string(257, 'm'), std::nullopt},
  };
  for (const Row& row : rows) {
    mac().named_values["hw.model"] = row.bytes;
    std::string model = "before";
    EXPECT_EQ(row.model.has_value(), system.hardware_model(&model)) << row.name;
    EXPECT_EQ(row.model.value_or("before"), model) << row.name;
  }
}

TEST_F(MacFacts, AnUnreadableModelIsUntouched) {
  std::string model = "before";
  EXPECT_FALSE(system.hardware_model(&model));
  EXPECT_EQ("before", model);
}

TEST_F(MacFacts, TheKernelsDomainEndsAtItsTerminatorOrWhereTheBufferIsFull) {
  std::string domain = "before";
  EXPECT_FALSE(system.kernel_domain(&domain));
  EXPECT_EQ("before", domain);
  mac().kernel_values[kDomain] = std::string("corp.example\0", 13);
  EXPECT_TRUE(system.kernel_domain(&domain));
  EXPECT_EQ("corp.example", domain);
  mac().kernel_values[kDomain] = std::string(1, '\0');
  EXPECT_TRUE(system.kernel_domain(&domain));
  EXPECT_EQ("", domain);
  mac().kernel_values[kDomain] = "";
  EXPECT_TRUE(system.kernel_domain(&domain));
  EXPECT_EQ("", domain);
  mac().kernel_values[kDomain] = std::string(2048, 'd');
  EXPECT_TRUE(system.kernel_domain(&domain));
  EXPECT_EQ(std::string(2048, 'd'), domain);
  mac().kernel_values[kDomain] = std::string(2049, 'd');
  EXPECT_FALSE(system.kernel_domain(&domain));
  EXPECT_EQ(std::string(2048, 'd'), domain);
}

TEST_F(MacFacts, TheOfficialNameIsTheResolvers) {
  mac().officials = {{"mac", "mac.corp.example"}, {"odd", std::nullopt}};
  std::string official = "before";
  EXPECT_FALSE(system.official_host_name("other", &official));
  EXPECT_FALSE(system.official_host_name("odd", &official));
  EXPECT_EQ("before", official);
  EXPECT_TRUE(system.official_host_name("mac", &official));
  EXPECT_EQ("mac.corp.example", official);
}

TEST_F(MacFacts, GestaltAnswersWith32Bits) {
  struct Row {
    uint32_t selector;
    int32_t response;
  };
  const Row rows[] = {{0x73797361, 10}, {0x70636c6b, -1894967296}, {0x63707574, 0}};
  for (const Row& row : rows) {
    mac().gestalts[row.selector] = row.response;
    // The words beside the response show that no more than 32 bits are written.
    int32_t responses[] = {7, 7, 7};
    EXPECT_TRUE(system.gestalt(row.selector, &responses[1]));
    EXPECT_EQ(7, responses[0]);
    EXPECT_EQ(row.response, responses[1]);
    EXPECT_EQ(7, responses[2]);
  }
}

TEST_F(MacFacts, AFailingGestaltLeavesTheResponseAlone) {
  int32_t response = 2400;
  EXPECT_FALSE(system.gestalt(0x73797361, &response));
  EXPECT_EQ(2400, response);
}

TEST_F(MacFacts, WhatOtherSystemsTellIsNotAnswered) {
  seam::ReleaseTexts release;
  release.legacy_name = "before";
  EXPECT_FALSE(system.release_texts(&release));
  EXPECT_EQ("before", release.legacy_name);
  seam::ProcessorTexts processor;
  processor.model = "before";
  EXPECT_FALSE(system.processor_texts(&processor));
  EXPECT_EQ("before", processor.model);
  EXPECT_EQ(seam::Chassis::not_stated, system.chassis());
}

TEST_F(MacFacts, FreePagesComeWithTheirSize) {
  mac().free_pages = 0xfffffffe;
  mac().page_size = 16384;
  uint64_t pages = 0;
  uint64_t size = 0;
  EXPECT_TRUE(system.free_memory(&pages, &size));
  EXPECT_EQ(0xfffffffeu, pages);
  EXPECT_EQ(16384u, size);
}

TEST_F(MacFacts, FreeMemoryNeedsBothAnswers) {
  struct Row {
    const char* name;
    std::optional<uint32_t> pages;
    std::optional<uint64_t> size;
  };
  const Row rows[] = {{"NoPageSize", 5, std::nullopt},
                      {"NoStatistics", std::nullopt, 4096},
                      {"Neither", std::nullopt, std::nullopt}};
  for (const Row& row : rows) {
    mac().free_pages = row.pages;
    mac().page_size = row.size;
    uint64_t pages = 1;
    uint64_t size = 2;
    EXPECT_FALSE(system.free_memory(&pages, &size)) << row.name;
    EXPECT_EQ(1u, pages) << row.name;
    EXPECT_EQ(2u, size) << row.name;
    EXPECT_EQ(0, mac().host_rights) << row.name;
  }
}

TEST_F(MacFacts, EveryRightToTheHostPortIsGivenBack) {
  mac().free_pages = 1;
  mac().page_size = 4096;
  uint64_t pages = 0;
  uint64_t size = 0;
  for (int i = 0; i < 1000; ++i) system.free_memory(&pages, &size);
  EXPECT_EQ(1000, mac().host_rights_taken);
  EXPECT_EQ(0, mac().host_rights);
}

TEST_F(MacFacts, SessionFieldsEndWhereTheyAreFull) {
  mac().sessions = {
      session_record(USER_PROCESS, "s000", "jdoe", "console"),
      session_record(DEAD_PROCESS, "s001x", std::string(300, 'u'), std::string(40, 'l')),
      session_record(BOOT_TIME, "", "", "")};
  seam::SessionEntry entry;
  ASSERT_TRUE(system.next_session_entry(&entry));
  EXPECT_EQ(7, entry.type);
  EXPECT_EQ("s000", entry.id);  // four bytes, full
  EXPECT_EQ("jdoe", entry.user);
  EXPECT_EQ("console", entry.line);
  ASSERT_TRUE(system.next_session_entry(&entry));
  EXPECT_EQ(8, entry.type);
  EXPECT_EQ("s001", entry.id);
  EXPECT_EQ(std::string(256, 'u'), entry.user);
  EXPECT_EQ(std::string(32, 'l'), entry.line);
  ASSERT_TRUE(system.next_session_entry(&entry));
  EXPECT_EQ(2, entry.type);
  EXPECT_EQ("", entry.user);
  EXPECT_FALSE(system.next_session_entry(&entry));
}

TEST_F(MacFacts, TheCursorOverTheSessionsStaysAtTheEndUntilItIsRewound) {
  mac().sessions = {session_record(USER_PROCESS, "s000", "jdoe", "console")};
  seam::SessionEntry entry;
  EXPECT_TRUE(system.next_session_entry(&entry));
  EXPECT_FALSE(system.next_session_entry(&entry));
  EXPECT_FALSE(system.next_session_entry(&entry));
  system.rewind_sessions();
  EXPECT_TRUE(system.next_session_entry(&entry));
}

}  // namespace
}  // namespace orbtest
