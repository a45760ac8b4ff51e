// fuzz/searches_fuzzer.cpp: any text behind a folder's path as a search, beside one that opens the
// folder itself and asks the plain wildcard rules for every name.
#include <dirent.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "fileutil/dirent.h"
#include "fuzz/check.h"
#include "tests/support/plain_wildcard.h"
#include "tests/support/temp_dir.h"

using orbfuzz::check;

namespace {

constexpr long kMostSteps = 3000;
constexpr int64_t kUntouched = 4711;

struct Closer {
  void operator()(DIR* stream) const { closedir(stream); }
};

class Folder {
 public:
  Folder() {
    for (const char* name : {"a", "ab", "b.txt", "a.txt.bak", "[x]", "?", ".hidden", "sub/a"})
      folder_.write(name, name);
  }
  std::string path(const std::string& text) const { return folder_.path() + "/" + text; }

 private:
  orbtest::TempDir folder_;
};

// The names that the search for `path` finds, in the system's order; false when the plain rules
// took too many steps to tell.
bool plain_names(const std::string& path, std::vector<std::string>* names) {
  const size_t slash = path.rfind('/');
  const std::string pattern = path.substr(slash + 1).substr(0, 260);
  const std::unique_ptr<DIR, Closer> stream(opendir(path.substr(0, slash + 1).c_str()));
  if (stream == nullptr) return true;
  while (const dirent* entry = readdir(stream.get())) {
    long steps = kMostSteps;
    if (orbtest::plain_wildcard_match(pattern.c_str(), entry->d_name, &steps) == 0 && steps > 0)
      names->push_back(entry->d_name);
    if (steps == 0) return false;
  }
  return true;
}

void check_record(const FindDataDirEnt& found, const std::string& folder) {
  struct stat status {};
  check(stat((folder + found.name).c_str(), &status) == 0);
  check(found.attributes == (S_ISDIR(status.st_mode) ? 16U : 0U));
  check(found.reserved == 0 && found.size == status.st_size);
  check(found.modified == status.st_mtime);
}

void check_search(const std::string& path, const std::vector<std::string>& names) {
  const std::string folder = path.substr(0, path.rfind('/') + 1);
  FindDataDirEnt found{};
  nErrno = kUntouched;
  const int handle = voxFindFirstDirEnt(path.c_str(), &found);
  check(nErrno == kUntouched);
  check((handle == -1) == names.empty());
  if (handle == -1) return;
  for (size_t i = 0; i < names.size(); ++i) {
    if (i > 0) check(voxFindNextDirEnt(handle, &found) == 1);
    check(found.name == names[i]);
    check_record(found, folder);
  }
  check(voxFindNextDirEnt(handle, &found) == 0);
  check(voxFindCloseDirEnt(handle) == 1);
  check(nErrno == kUntouched);
  check(voxFindCloseDirEnt(handle) == 0 && nErrno == 22);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const Folder folder;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const std::string text = bytes.c_str();
  if (text.find("..") != std::string::npos) return -1;  // what lies above may change meanwhile
  const std::string path = folder.path(text);
  std::vector<std::string> names;
  if (plain_names(path, &names)) check_search(path, names);
  return 0;
}
