// tests/contract/consumers/c/main.c: uses the library from C, area by area.
#include <stdio.h>

#include "../expect.h"
#include "areas.h"

int checks = 0;
int failures = 0;

int main(int count, char** arguments) {
  if (count != 2) {
    fprintf(stderr, "usage: %s PLUGIN\n", arguments[0]);
    return 2;
  }
  use_handles();
  use_threads();
  use_slots();
  use_lock();
  use_stacks();
  use_lists();
  use_libraries(arguments[1]);
  use_files();
  use_searches();
  use_trees();
  use_identifiers();
  use_times();
  use_platforms();
  use_versions(arguments[1]);
  use_signals();
  use_numbers();
  use_text();
  printf("%d checks, %d failed\n", checks, failures);
  return failures != 0;
}
