// tests/contract/consumers/cxx/main.cpp: uses the library from C++, area by area.
#include <cstdio>

#include "../expect.h"
#include "areas.h"

int checks = 0;
int failures = 0;

int main() {
  use_portability();
  use_fileutil();
  use_network();
  use_session();
  use_sysprops();
  use_config();
  std::printf("%d checks, %d failed\n", checks, failures);
  return failures != 0 ? 1 : 0;
}
