// tests/fileutil/plugins/versioned.cpp: a plug-in library that states the version of its build.
#include <cstdint>

extern "C" __attribute__((visibility("default"))) int HBPLUGIN_GetVersion(uint16_t* major_number,
                                                                          uint16_t* minor_number,
                                                                          uint16_t* sub_minor,
                                                                          uint16_t* build) {
  *major_number = PLUGIN_MAJOR;
  *minor_number = PLUGIN_MINOR;
  *sub_minor = PLUGIN_SUB_MINOR;
  *build = PLUGIN_BUILD;
  return PLUGIN_RESULT;
}
