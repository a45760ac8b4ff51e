// tests/torture/machine.h: the machine that tortured functions run on.
//
// Its files lie below a folder of the test's own; what the kernel, the account database and the
// resolver say of it is fixed in machine_calls.cpp. Each of these calls is watched as calltrace.h
// says, and a list that the system gives out counts as a block of memory until it is given back.
#pragma once

#include "tests/support/scoped_environment.h"
#include "tests/support/silent_output.h"

namespace orbtest {

// While it lives, platform::host() is this machine, and standard output goes nowhere. At most one.
//
// It is "box", at 2024-02-03 09:07:05 UTC, Japanese; 4 processors "Model Q" of 2400 MHz in a
// portable; 16 GiB, 1 GiB of them free; Debian 12.5 on the 64-bit kernel 6.1.0; "/" and "/data" of
// 1,000,000 blocks of 4096 bytes, 300,000 of them free; eth0, index 2, with 192.0.2.20/24 and
// fe80::aede:48ff:fe00:1122/64; the user Jane, of the group "CORP\Domain Users", is logged on;
// account 7 is "somebody with a name that needs room"; the resolver calls the machine
// box.office.example.
class Machine {
 public:
  Machine();
  ~Machine();
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

 private:
  ScopedTimeZone zone_{"UTC0"};
  ScopedEnvironment language_{"LANG", "ja_JP.UTF-8"};
  SilentOutput silence_;
};

// While it lives, connections of this machine are never made at once.
class SlowConnections {
 public:
  SlowConnections();
  ~SlowConnections();
  SlowConnections(const SlowConnections&) = delete;
  SlowConnections& operator=(const SlowConnections&) = delete;
};

}  // namespace orbtest
