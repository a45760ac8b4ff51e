// fuzz/paths_fuzzer.cpp: any text through the flattener and the resolver.
//
// The text up to the first "\n" is a path, the rest a base. The flattener stands beside its rules
// taken one by one; what the resolver reaches is looked at on disk.
#include "fileutil/paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "tests/support/plain_flatten.h"

namespace {

using orbfuzz::check;
using orbtest::plain_flatten;

const std::string& working_folder() {
  static const std::string folder = [] {
    char path[1024];
    return std::string(getcwd(path, sizeof path) == nullptr ? "" : path);
  }();
  return folder;
}

void check_flattener(const std::string& path, const std::string& base) {
  std::string out = "untouched";
  FileNameFlattener plain(path);
  const auto against_folder = plain_flatten(path, working_folder());
  check(plain.GetFlatPath(out) == against_folder.has_value());
  check(out == against_folder.value_or("untouched"));

  out = "untouched";
  FileNameFlattener based(path, base);
  const auto flat_base = plain_flatten(base, working_folder());
  const auto against_base = flat_base ? plain_flatten(path, *flat_base) : std::nullopt;
  check(based.GetFlatPath(out) == against_base.has_value());
  check(out == against_base.value_or("untouched"));
  check(based.Flatten() == plain_flatten(path, flat_base.value_or("")).has_value());
}

// What is resolved is a regular file, is flat already, and is the path's own file where the system
// finds one at the flat path.
void check_resolver(const std::string& path) {
  FileNameResolver resolver(path);
  std::string reached;
  if (!resolver.GetAbsolutePath(reached)) return;
  struct stat file {};
  struct stat by_system {};
  check(lstat(reached.c_str(), &file) == 0 && S_ISREG(file.st_mode));
  check(plain_flatten(reached, "/") == reached);
  const auto flat = plain_flatten(path, working_folder());
  check(flat.has_value());
  if (lstat(flat->c_str(), &by_system) == 0 && S_ISREG(by_system.st_mode)) check(reached == *flat);
}

void check_handles(const std::string& path) {
  void* resolver = nullptr;
  check(voxcomn_filenameresolver_create(path.c_str(), &resolver) == 0);
  std::vector<char> buffer(1, '#');
  int size = 0;
  const unsigned first =
      voxcomn_filenameresolver_get_absolute_filename(resolver, buffer.data(), &size);
  check(first == 0x80000008 && buffer[0] == '#');
  if (size > 0) {
    buffer.assign(static_cast<size_t>(size), '#');
    check(voxcomn_filenameresolver_get_absolute_filename(resolver, buffer.data(), &size) == 0);
    check(buffer.back() == '\0' && buffer.size() == static_cast<size_t>(size));
  }
  voxcomn_filenameresolver_destroy(resolver);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const size_t line = text.find('\n');
  const std::string path = text.substr(0, line);
  const std::string base = line == std::string::npos ? "" : text.substr(line + 1);
  check_flattener(path, base);
  check_resolver(path);
  check_handles(path);
  return 0;
}
