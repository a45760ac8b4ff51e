// tests/contract/c_names_test.cpp: everything that is exported with an unmangled name is declared
// by a header that serves C and comes out of the library.
#include "tests/contract/c_names.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>

#include "portability/handles.h"

namespace {

std::map<std::string, uintptr_t> c_names() {
  std::map<std::string, uintptr_t> names;
  each_c_name(
      [](const CName* name, void* argument) {
        static_cast<std::map<std::string, uintptr_t>*>(argument)->emplace(name->name,
                                                                          name->address);
      },
      &names);
  return names;
}

std::string file_of(const void* address) {
  Dl_info info{};
  return dladdr(address, &info) != 0 && info.dli_fname != nullptr ? info.dli_fname : "";
}

// The generated table against the list that it is made of.
TEST(CNames, AreAllListed) {
  std::ifstream list(ORB_EXPORTS_LIST);
  size_t count = 0;
  const auto names = c_names();
  for (std::string line; std::getline(list, line);) {
    if (line.empty() || line.find_first_of("#:( ") != std::string::npos) continue;
    EXPECT_EQ(1U, names.count(line)) << line;
    ++count;
  }
  EXPECT_EQ(count, names.size());
  EXPECT_LT(100U, count);
}

TEST(CNames, AllComeOutOfTheLibrary) {
  const std::string library = file_of(dlsym(RTLD_DEFAULT, "voxCreateEvent"));
  EXPECT_NE(std::string::npos, library.find("liborbcommon")) << library;
  for (const auto& [name, address] : c_names())
    EXPECT_EQ(library, file_of(reinterpret_cast<const void*>(address))) << name;
}

}  // namespace
