// tests/portability/plugins/plain.cpp: a library without entry point, with texts of its own.
#include <cstdint>
#include <cstdio>

#define PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))

PLUGIN_EXPORT int plain_number() { return 4711; }

// Writes "text ID" into `buffer` and returns its length; the module itself as text 0 is -7.
PLUGIN_EXPORT int32_t loadString(void* module, uint32_t id, char* buffer, int32_t size) {
  if (id == 0) return module == nullptr ? 7 : -7;
  return snprintf(buffer, static_cast<size_t>(size), "text %u", id);
}
