// tests/contract/noisy.cpp: a library that opens a file and writes to it when it is loaded.
#include <fcntl.h>
#include <unistd.h>

namespace {

const int descriptor = open("/dev/null", O_WRONLY);
[[maybe_unused]] const ssize_t written = write(descriptor, "loaded", 6);

}  // namespace
