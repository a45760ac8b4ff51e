// tests/portability/plugins/lazy.cpp: a library that calls what nobody defines.

extern "C" int orb_defined_nowhere();

// Loads as long as nobody calls it.
extern "C" __attribute__((visibility("default"))) int call_what_is_missing() {
  return orb_defined_nowhere();
}
