// tests/support/tracedcalls.h: the stand-ins of the system functions that a CallTrace watches.
#pragma once

namespace orbtest {

// Notes a call of `function` by the calling thread. Whether it is to fail; errno then says `code`.
bool fails(const char* function, int code);

bool is_traced();  // the calling thread, right now

}  // namespace orbtest

// The stand-in of `symbol`, which is told as `name`: it gives `failed`, with `code` in errno, or
// what the system gives.
#define ORB_TRACED(type, symbol, name, failed, code, parameters, arguments) \
  type __real_##symbol parameters;                                          \
  type __wrap_##symbol parameters {                                         \
    return orbtest::fails(name, code) ? failed : __real_##symbol arguments; \
  }

// The same where the call does its work in any case.
#define ORB_TRACED_BEHIND(type, symbol, name, failed, code, parameters, arguments) \
  type __real_##symbol parameters;                                                 \
  type __wrap_##symbol parameters {                                                \
    const type result = __real_##symbol arguments;                                 \
    return orbtest::fails(name, code) ? failed : result;                           \
  }

// Pthread functions return the code.
#define ORB_TRACED_THREAD(symbol, code, parameters, arguments) \
  ORB_TRACED(int, symbol, #symbol, code, code, parameters, arguments)
#define ORB_TRACED_THREAD_BEHIND(symbol, code, parameters, arguments) \
  ORB_TRACED_BEHIND(int, symbol, #symbol, code, code, parameters, arguments)
