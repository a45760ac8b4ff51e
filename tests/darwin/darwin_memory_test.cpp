// tests/darwin/darwin_memory_test.cpp: memory runs out at every request of the macOS sources and of
// the collectors above them.
#include <net/if.h>
#include <sys/sysctl.h>

#include <functional>
#include <new>

#include "network/enumerate.h"
#include "sysprops/collect.h"
#include "tests/darwin/scripted_machine.h"
#include "tests/darwin/scripted_macos.h"
#include "tests/support/faults.h"

namespace orbtest {
namespace {

namespace seam = quillon_com::orb::platform;
namespace sysprops = quillon_com::orb::sysprops;

const std::string kVersionList = "/System/Library/CoreServices/SystemVersion.plist";
const std::string kLongText = "a text that an object cannot hold by itself";

// A Mac that answers all that the rows ask for.
void script_mac() {
  Mac whole;
  whole.indexes = {{"en0", 4}};
  whole.interfaces = {
      {"en0", IFF_UP, link_address("en0", std::string("\x00\x1c\x42\x0a\xff\x01", 6)), {}},
      {"en0", IFF_UP, ipv4_address("192.0.2.20"), ipv4_mask("255.255.255.0")},
      {"en0", IFF_UP, ipv6_address("fe80::aede:48ff:fe00:1122", 4),
       ipv6_mask("ffff:ffff:ffff:ffff::")}};
  whole.officials = {{"mac", kLongText}};
  whole.kernel_values = {{{CTL_KERN, KERN_NISDOMAINNAME}, kLongText}};
  whole.named_values = {{"hw.model", "MacBookPro18,1 or one of a longer name"}};
  whole.mounts = {{{mounted_volume("/System/Volumes/Data", MNT_LOCAL, 4096, 1000000, 300000)}}};
  whole.lists["list"] = ListValue::dictionary(
      {{"ProductVersion", ListValue::of_text("14.2.1 of a longer text")},
       {"ProductBuildVersion", ListValue::of_text("23C71 of a longer text")}});
  mac() = std::move(whole);
}

struct MemoryRow {
  const char* name;
  // The call's answer; "no memory" for std::bad_alloc.
  std::function<std::string(const ScriptedMachine&)> call;
  const char* answer;
  const char* without_memory;
};

std::string interfaces_of(const ScriptedMachine& machine) {
  std::vector<seam::InterfaceEntry> entries;
  return machine.interface_entries(&entries) ? std::to_string(entries.size()) : "unread";
}

std::string list_of(const ScriptedMachine& machine) {
  NetInterfaceList list(false);
  if (!quillon_com::orb::network::fill_list(machine, list)) return "none";
  return std::to_string(list.getIndexes().size());
}

std::string texts_of(const ScriptedMachine& machine) {
  std::vector<std::optional<std::string>> texts;
  const bool read =
      machine.property_list_texts("list", {"ProductVersion", "ProductBuildVersion"}, &texts);
  return read ? std::to_string(texts.size()) : "no list";
}

// The result, and a text only where the whole record has it.
std::string system_of(const ScriptedMachine& machine) {
  sysprops::OSInformation record;
  const bool known = sysprops::collect_os(machine, record);
  const bool whole = record.osVersion == L"14.2.1 of a longer text" &&
                     record.osBuildNum == L"23C71 of a longer text";
  return known && whole ? "known" : "unknown";
}

// A text of the seam that the scripted machine passes on.
template <bool (seam::DarwinSystem::*fact)(std::string*) const>
std::string text_of(const ScriptedMachine& machine) {
  std::string text = "untouched";
  return (machine.*fact)(&text) ? text : "unread";
}

std::string official_name_of(const ScriptedMachine& machine) {
  std::string text;
  return machine.official_host_name("mac", &text) ? text : "unread";
}

const MemoryRow kRows[] = {
    {"InterfaceEntriesAreReleased", interfaces_of, "3", "no memory"},
    {"AFilledListIsWholeOrNone", list_of, "1", "no memory"},
    {"ListObjectsAreReleased", texts_of, "2", "no memory"},
    {"TheSystemIsUnknownWithoutMemory", system_of, "known", "unknown"},
    {"VolumesAreWholeOrNone",
     [](const ScriptedMachine& machine) { return std::to_string(machine.volumes().size()); }, "1",
     "no memory"},
    {"OfficialName", official_name_of, kLongText.c_str(), "no memory"},
    {"KernelDomain", text_of<&seam::DarwinSystem::kernel_domain>, kLongText.c_str(), "no memory"},
    {"Model", text_of<&seam::DarwinSystem::hardware_model>,
     "MacBookPro18,1 or one of a longer name", "no memory"},
    {"AZoneNeedsNoMemory",
     [](const ScriptedMachine& machine) {
       return std::string(machine.zone_accepted("fe80::1%4") ? "yes" : "no");
     },
     "yes", "no memory"},
};

class MacMemory : public MacTest, public testing::WithParamInterface<MemoryRow> {
 protected:
  void SetUp() override {
    script_mac();
    machine.files = {{kVersionList, "list"}};
    machine.machine = "x86_64";
  }

  // The answer with the given request failing, as text; what is told of it needs no memory.
  std::string answer(size_t nth, Failing failing, size_t* failures) {
    std::string text = "no memory";
    const MemoryFaults faults(nth, failing);
    try {
      text = GetParam().call(machine);
    } catch (const std::bad_alloc&) {
    }
    *failures = faults.failures();
    return text;
  }

  ScriptedMachine machine;
};

TEST_P(MacMemory, RunsOut) {
  size_t none = 0;
  EXPECT_EQ(GetParam().answer, answer(0, Failing::once, &none));
  for_each_memory_fault([&](size_t nth, Failing failing) {
    size_t failures = 0;
    const std::string text = answer(nth, failing, &failures);
    EXPECT_EQ(failures == 0 ? GetParam().answer : GetParam().without_memory, text) << nth;
    EXPECT_EQ(0, mac().interface_lists + mac().address_lists + mac().host_rights) << nth;
    EXPECT_EQ(0u, mac().owned.size()) << nth;
    EXPECT_EQ(GetParam().answer, answer(0, Failing::once, &none)) << "behind " << nth;
    return failures;
  });
}

INSTANTIATE_TEST_SUITE_P(Calls, MacMemory, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace orbtest
