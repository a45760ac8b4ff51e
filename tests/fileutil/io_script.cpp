// tests/fileutil/io_script.cpp: what the linker puts before the scripted calls.
#include "tests/fileutil/io_script.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace {

thread_local orbtest::IoScript* script = nullptr;

// Takes the next of `answers`; false, with errno set, when it is a failure. `size` is cut to it.
bool passes(std::deque<orbtest::IoAnswer>& answers, size_t* size) {
  if (answers.empty()) return true;
  const orbtest::IoAnswer answer = answers.front();
  answers.pop_front();
  *size = std::min(*size, answer.most);
  if (answer.error != 0) errno = answer.error;
  return answer.error == 0;
}

}  // namespace

namespace orbtest {

IoScript::IoScript() { script = this; }
IoScript::~IoScript() { script = nullptr; }

}  // namespace orbtest

extern "C" {

ssize_t __real_read(int descriptor, void* buffer, size_t size);
ssize_t __real_write(int descriptor, const void* bytes, size_t size);
ssize_t __real_sendfile64(int to, int from, off64_t* offset, size_t size);
int __real_close(int descriptor);

ssize_t __wrap_read(int descriptor, void* buffer, size_t size) {
  if (script != nullptr && !passes(script->reads, &size)) return -1;
  return __real_read(descriptor, buffer, size);
}

ssize_t __wrap_write(int descriptor, const void* bytes, size_t size) {
  if (script != nullptr && !passes(script->writes, &size)) return -1;
  return __real_write(descriptor, bytes, size);
}

// The library is built for long file offsets, where this is what sendfile stands for.
ssize_t __wrap_sendfile64(int to, int from, off64_t* offset, size_t size) {
  if (script != nullptr && !passes(script->kernel_copies, &size)) return -1;
  return __real_sendfile64(to, from, offset, size);
}

char* __real_getcwd(char* buffer, size_t size);

char* __wrap_getcwd(char* buffer, size_t size) {
  if (script == nullptr || !script->working_folder) return __real_getcwd(buffer, size);
  buffer[script->working_folder->copy(buffer, size - 1)] = '\0';
  return buffer;
}

int __wrap_close(int descriptor) {
  size_t nothing = 0;
  const int result = __real_close(descriptor);
  return script != nullptr && !passes(script->closes, &nothing) ? -1 : result;
}

}  // extern "C"
