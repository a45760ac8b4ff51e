// tests/support/fence.h: keeps a test of removal from reaching the machine.
#pragma once

namespace orbtest {

// Makes the whole machine read-only for this process, once and for good, but for an empty folder
// for temporary files and for `writable` (a build folder whose counts are written at the end; null
// for none). False, with nothing promised, where the system refuses it, as it does without root:
// reason to skip the test.
bool fence_machine_off(const char* writable);

}  // namespace orbtest
