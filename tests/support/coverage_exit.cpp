// tests/support/coverage_exit.cpp: children's counts of lines and branches, in builds that count.
#include <unistd.h>

extern "C" {

void __gcov_dump();
[[noreturn]] void __real__exit(int status);

// A child of a test ends here: what it ran counts as well, unless it has a root of its own, in
// which the counts would be files of the test.
[[noreturn]] void __wrap__exit(int status) {
  if (access("/proc/self/exe", F_OK) == 0) __gcov_dump();
  __real__exit(status);
}

}  // extern "C"
