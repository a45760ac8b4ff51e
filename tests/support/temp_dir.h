// tests/support/temp_dir.h: a folder of the test's own, removed with the object.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orbtest {

// An empty folder with a name of its own below the system's temporary folder; the destructor
// removes it with all that it then holds. The constructor throws when none can be made.
class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orbtest.XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  // The folder, without a "/" at the end.
  const std::string& path() const { return path_; }

  // The path of `name` below the folder; a "/" at the start of `name` makes no difference.
  std::string path(std::string_view name) const {
    while (!name.empty() && name.front() == '/') name.remove_prefix(1);
    return path_ + "/" + std::string(name);
  }

  // Writes `bytes` to the file `name` and makes the folders on the way; returns the file's path.
  std::string write(std::string_view name, std::string_view bytes) const {
    const std::string file = path(name);
    std::filesystem::create_directories(std::filesystem::path(file).parent_path());
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out.flush()) throw std::runtime_error("cannot write " + file);
    return file;
  }

  // Makes the folder `name` and those on the way; returns its path.
  std::string make_dir(std::string_view name) const {
    const std::string folder = path(name);
    std::filesystem::create_directories(folder);
    return folder;
  }

 private:
  std::string path_;
};

}  // namespace orbtest
