// tests/contract/consumers/expect.h: the one check of these programs, in C and in C++.
#pragma once

#include <stdio.h>

// What was looked at, and how much of it was not as expected; each program has its own.
extern int checks, failures;

#define EXPECT(condition)                                                     \
  do {                                                                        \
    ++checks;                                                                 \
    if (!(condition)) {                                                       \
      ++failures;                                                             \
      fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
    }                                                                         \
  } while (0)
