// tests/contract/consumers/c/plugin.c: a library that counts its loads, has one text and tells its
// version.
#include <stdint.h>
#include <string.h>

#define PLUGIN_EXPORT __attribute__((visibility("default")))

PLUGIN_EXPORT int plugin_attached = 0;

PLUGIN_EXPORT int32_t DllMain(void* library, uint32_t reason, void* reserved) {
  plugin_attached += library != NULL && reserved == NULL && reason == 1;
  return 1;
}

PLUGIN_EXPORT int32_t loadString(void* module, uint32_t id, char* buffer, int32_t size) {
  if (module == NULL || id != 7 || size < 6) return 0;
  strcpy(buffer, "seven");
  return 5;
}

PLUGIN_EXPORT int32_t HBPLUGIN_GetVersion(uint16_t* major, uint16_t* minor, uint16_t* subminor,
                                          uint16_t* build) {
  *major = 1;
  *minor = 2;
  *subminor = 3;
  *build = 256;
  return 0;
}
