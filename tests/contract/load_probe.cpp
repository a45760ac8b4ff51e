// tests/contract/load_probe.cpp: loads the library named by its argument, and lets it go.
//
// It calls getppid before the load, between load and unload, and after: marks for whoever traces
// it. Nothing is written unless something is amiss, and the exit status tells what: 1 it does not
// load, 2 a thread or a descriptor is there that was not before, 3 it stays loaded, 4 its memory is
// not given back.
#include <dirent.h>
#include <dlfcn.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <string>

namespace {

// How many threads and open descriptors this process has.
int entries(const char* folder) {
  int count = 0;
  DIR* stream = opendir(folder);
  if (stream == nullptr) return -1;
  while (readdir(stream) != nullptr) ++count;
  closedir(stream);
  return count;
}

void load_and_unload(const std::string& library, int rounds) {
  for (int round = 0; round < rounds; ++round) dlclose(dlopen(library.c_str(), RTLD_NOW));
}

}  // namespace

int main(int count, char** arguments) {
  const std::string library = count == 2 ? arguments[1] : "";
  const int threads = entries("/proc/self/task");
  const int descriptors = entries("/proc/self/fd");

  getppid();
  void* handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
  getppid();
  if (handle == nullptr) {
    fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  if (entries("/proc/self/task") != threads || entries("/proc/self/fd") != descriptors) return 2;
  getppid();
  dlclose(handle);
  getppid();
  if (dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD) != nullptr) return 3;

  // The allocator keeps a few freed blocks of each size at hand and counts them as used.
  load_and_unload(library, 20);
  const size_t used = mallinfo2().uordblks;
  load_and_unload(library, 20);
  return mallinfo2().uordblks == used ? 0 : 4;
}
