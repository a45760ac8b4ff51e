// tests/portability/plugin_hook.h: what the test's libraries call, and where they are.
#pragma once

#include <stdlib.h>

#include <cstdint>
#include <cstdio>
#include <functional>

namespace orbtest {

inline constexpr const char* kHookedPlugin = ORB_HOOKED_PLUGIN;  // has an entry point
inline constexpr const char* kPlainPlugin = ORB_PLAIN_PLUGIN;    // has none, but "loadString"

// While it lives, the entry point of kHookedPlugin calls the function given.
class PluginHook {
 public:
  using Function = std::function<int32_t(void* library, uint32_t reason, void* reserved)>;

  explicit PluginHook(Function function) {
    current() = std::move(function);
    char number[32];
    snprintf(number, sizeof number, "%llx",
             static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(&call)));
    setenv("ORB_TEST_PLUGIN_HOOK", number, 1);
  }
  ~PluginHook() { unsetenv("ORB_TEST_PLUGIN_HOOK"); }
  PluginHook(const PluginHook&) = delete;
  PluginHook& operator=(const PluginHook&) = delete;

 private:
  static Function& current() {
    static Function function;
    return function;
  }
  static int32_t call(void* library, uint32_t reason, void* reserved) {
    return current()(library, reason, reserved);
  }
};

}  // namespace orbtest
