// tests/support/fence.h: keeps a test of removal from reaching the machine.
#pragma once

namespace orbtest {

// Makes the whole machine read-only for this process, once and for good, but for an empty folder
// for temporary files. False, with nothing promised, where the system refuses it, as it does
// without root: reason to skip the test.
bool fence_machine_off();

}  // namespace orbtest
