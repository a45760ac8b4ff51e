// benchmarks/portability/plugin.cpp: the library that the benchmarks load.
extern "C" __attribute__((visibility("default"))) int plugin_answer();

int plugin_answer() { return 42; }
