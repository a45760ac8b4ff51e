// tests/support/faults.cpp: the watched allocation functions.
//
// The linker sends this project's malloc, calloc and realloc to the __wrap_ functions below;
// operator new is replaced for the whole program and goes on to the one behind it.
#include "tests/support/faults.h"

#include <dlfcn.h>

#include <cstdlib>
#include <new>

namespace {

struct Watch {
  bool active = false;
  size_t nth = 0;
  orbtest::Failing failing = orbtest::Failing::once;
  size_t requests = 0;
  size_t failures = 0;
};

thread_local Watch watch;

bool request_fails() {
  if (!watch.active) return false;
  ++watch.requests;
  const bool due = watch.failing == orbtest::Failing::once ? watch.requests == watch.nth
                                                           : watch.requests >= watch.nth;
  if (watch.nth == 0 || !due) return false;
  ++watch.failures;
  return true;
}

// The function called `name` that this program would have without the one below.
template <class Function>
Function* behind(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

void* require(void* block) {
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

namespace orbtest {

MemoryFaults::MemoryFaults(size_t nth, Failing failing) { watch = {true, nth, failing, 0, 0}; }
MemoryFaults::~MemoryFaults() { watch.active = false; }
size_t MemoryFaults::requests() const { return watch.requests; }
size_t MemoryFaults::failures() const { return watch.failures; }

FaultsPaused::FaultsPaused() : watched_before_(watch.active) { watch.active = false; }
FaultsPaused::~FaultsPaused() { watch.active = watched_before_; }

}  // namespace orbtest

extern "C" {

void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);

void* __wrap_malloc(size_t size) { return request_fails() ? nullptr : __real_malloc(size); }

void* __wrap_calloc(size_t count, size_t size) {
  return request_fails() ? nullptr : __real_calloc(count, size);
}

void* __wrap_realloc(void* block, size_t size) {
  return request_fails() ? nullptr : __real_realloc(block, size);
}

}  // extern "C"

void* operator new(size_t size) {
  static auto* const next = behind<void*(size_t)>("_Znwm");
  return require(request_fails() ? nullptr : next(size));
}

void* operator new[](size_t size) {
  static auto* const next = behind<void*(size_t)>("_Znam");
  return require(request_fails() ? nullptr : next(size));
}

void* operator new(size_t size, const std::nothrow_t& tag) noexcept {
  static auto* const next = behind<void*(size_t, const std::nothrow_t&)>("_ZnwmRKSt9nothrow_t");
  return request_fails() ? nullptr : next(size, tag);
}

void* operator new[](size_t size, const std::nothrow_t& tag) noexcept {
  static auto* const next = behind<void*(size_t, const std::nothrow_t&)>("_ZnamRKSt9nothrow_t");
  return request_fails() ? nullptr : next(size, tag);
}

void* operator new(size_t size, std::align_val_t alignment) {
  static auto* const next = behind<void*(size_t, std::align_val_t)>("_ZnwmSt11align_val_t");
  return require(request_fails() ? nullptr : next(size, alignment));
}

void* operator new[](size_t size, std::align_val_t alignment) {
  static auto* const next = behind<void*(size_t, std::align_val_t)>("_ZnamSt11align_val_t");
  return require(request_fails() ? nullptr : next(size, alignment));
}
