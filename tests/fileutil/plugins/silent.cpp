// tests/fileutil/plugins/silent.cpp: a plug-in library that states its version through another
// name.
#include <cstdint>

extern "C" __attribute__((visibility("default"))) int HBPLUGIN_GetVersions(uint16_t*, uint16_t*,
                                                                           uint16_t*, uint16_t*) {
  return 0;
}
