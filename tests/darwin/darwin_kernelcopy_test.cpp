// tests/darwin/darwin_kernelcopy_test.cpp: macOS leaves a whole copy to its caller.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

#include "platform/kernelcopy.h"

namespace {

TEST(KernelCopy, MovesNothingAndNeitherPosition) {
  FILE* const source = tmpfile();
  FILE* const destination = tmpfile();
  ASSERT_EQ(5, write(fileno(source), "bytes", 5));
  ASSERT_EQ(0, lseek(fileno(source), 0, SEEK_SET));
  quillon_com::orb::platform::copy_in_kernel(fileno(source), fileno(destination));
  EXPECT_EQ(0, lseek(fileno(source), 0, SEEK_CUR));
  EXPECT_EQ(0, lseek(fileno(destination), 0, SEEK_END));
  fclose(source);
  fclose(destination);
}

}  // namespace
