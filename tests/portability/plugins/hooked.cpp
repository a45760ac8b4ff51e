// tests/portability/plugins/hooked.cpp: a library whose entry point asks the test.
#include <cstdint>
#include <cstdlib>

using Hook = int32_t (*)(void* library, uint32_t reason, void* reserved);

// The test's function, which it leaves as a number in the environment; none accepts all.
extern "C" __attribute__((visibility("default"))) int32_t DllMain(void* library, uint32_t reason,
                                                                  void* reserved) {
  const char* number = getenv("ORB_TEST_PLUGIN_HOOK");
  if (number == nullptr) return 1;
  return reinterpret_cast<Hook>(strtoull(number, nullptr, 16))(library, reason, reserved);
}
