// tests/fileutil/tree_scope.h: what the tests of tree removal share.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>

#include "fileutil/filetree.h"
#include "tests/fileutil/search_scope.h"

namespace orbtest {

// A folder for trees; after each test no search and no descriptor is left open.
class Trees : public Searching {
 protected:
  std::string path(const std::string& name) const { return folder_.path(name); }
  void remove(const std::string& name) const { voxcomn_deltree(path(name).c_str()); }
  void link(const std::string& target, const std::string& name) const {
    std::filesystem::create_symlink(target, path(name));
  }

  // Makes the empty file `name` in a folder that is there.
  void touch(const std::string& name) const {
    const int number = open(path(name).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    EXPECT_EQ(0, close(number)) << name;
  }

  // What is below the folder, as paths that begin there; links are not followed.
  std::set<std::string> left() const {
    std::set<std::string> paths;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path()))
      paths.insert(entry.path().lexically_relative(folder_.path()).string());
    return paths;
  }

  // Makes `levels` folders called `name` within one another, the first in the folder `at`, each
  // with the file "f"; gives the path of the last one below the folder.
  std::string nest(const std::string& at, int levels, const std::string& name = "d") const {
    std::string last = at;
    for (int level = 0; level < levels; ++level) {
      last += (last.empty() ? "" : "/") + name;
      folder_.write(last + "/f", "");
    }
    return last;
  }
};

}  // namespace orbtest
