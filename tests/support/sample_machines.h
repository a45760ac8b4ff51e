// tests/support/sample_machines.h: whole scripted machines that property tests start from.
#pragma once

#include "tests/support/fake_system.h"
#include "tests/support/interface_entries.h"

namespace orbtest {

// What both machines share: names, one interface, memory, volumes, a user, time and zone.
inline FakeSystem sample_machine() {
  FakeSystem system;
  system.kernel = seam::KernelNames{"box.lab.example", "x86_64", "6.1.0-18-amd64"};
  system.host = "box";
  system.officials["box"] = "box.office.example";
  system.indexes["eth0"] = 2;
  system.entries = std::vector<seam::InterfaceEntry>{
      link_entry("eth0", {2, 0, 0, 0, 0, 0xa}),
      address_entry("eth0", ipv4("192.0.2.20"), ipv4("255.255.255.0"))};
  system.processors = 4;
  system.memory = 17179869184;
  system.free_pages = {244140, 4096};  // 999,997,440 bytes, above one grid step of 858,993,459
  system.mounted = {{"/", true, 4096, 1000000, 300000}, {"/data", true, 1048576, 100, 50}};
  system.sessions = {{7, "1", "Jane", "tty1"}};
  system.zone = "CET";
  system.broken_down = tm{};
  system.broken_down->tm_year = 124;
  system.broken_down->tm_mon = 1;
  system.broken_down->tm_mday = 3;
  system.broken_down->tm_hour = 9;
  system.broken_down->tm_min = 7;
  system.broken_down->tm_sec = 5;
  return system;
}

// A machine that is identified by release files.
inline FakeSystem release_machine() {
  FakeSystem system = sample_machine();
  system.release.emplace();
  system.release->fields = {{"NAME", "Debian GNU/Linux"}, {"ID", "debian"}, {"VERSION_ID", "12"}};
  system.release->debian_version = "12.5.1";
  system.processor = seam::ProcessorTexts{"x86_64", "Model Q", 2400000000};
  system.chassis_fact = seam::Chassis::portable;
  return system;
}

// A machine that is identified by a version list and asked for its processor by selectors.
inline FakeSystem version_list_machine() {
  FakeSystem system = sample_machine();
  system.files["/System/Library/CoreServices/SystemVersion.plist"] = "<list>";
  system.lists["<list>"] = {{"ProductVersion", "10.15.7"}, {"ProductBuildVersion", "19H2"}};
  system.commands["serverinfo --productname"] = "";
  system.commands["sw_vers -productName"] = "Mac OS X Server";
  system.gestalts = {{0x70636C6B, -1894967296},  // 2,400,000,000 as a signed word
                     {0x73797361, 10},
                     {0x63707574, 0x69787878}};
  system.model = "MacBookPro11,1";
  return system;
}

}  // namespace orbtest
