// fileutil/paths.cpp: flattening by steps, and the walk along symbolic links.
#include "fileutil/paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <new>
#include <string_view>

namespace {

constexpr unsigned kSuccess = 0;
constexpr unsigned kFailure = 0x80000008;
constexpr size_t kBuffer = 1024;  // of the working folder's path and of a link's text
constexpr int kMostLinks = 50;

// Empty when it cannot be had, or lies outside the root, which some systems tell by another text.
std::string working_folder() {
  char buffer[kBuffer];
  const bool known = getcwd(buffer, sizeof buffer) != nullptr && buffer[0] == '/';
  return known ? std::string(buffer) : std::string();
}

// Runs `work`; false when it gives false or memory runs out.
template <class Work>
bool completed(Work work) noexcept {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return false;
  }
}

// Appends the steps of `path`, which begins with "/" and ends with one, to the empty `flat`, each
// behind a "/". False when a ".." has no step before it.
bool append_steps(std::string_view path, std::string& flat) {
  size_t start = 1;
  for (size_t end; (end = path.find('/', start)) != std::string_view::npos; start = end + 1) {
    const std::string_view step = path.substr(start, end - start);
    if (step == ".") continue;
    if (step != "..") {
      flat.append("/").append(step);
    } else if (flat.empty()) {
      return false;
    } else {
      flat.erase(flat.rfind('/'));
    }
  }
  return true;
}

// What lies at `path` itself; a path with a zero byte in it names nothing.
bool examine(const std::string& path, struct stat* status) {
  return path.find('\0') == std::string::npos && lstat(path.c_str(), status) == 0;
}

// Replaces `path`, a link, by the flattened path that it leads to.
bool follow(std::string& path) {
  char text[kBuffer];
  const ssize_t length = readlink(path.c_str(), text, sizeof text);
  if (length < 0) return false;
  const std::string folder = path.substr(0, path.rfind('/'));
  return FileNameFlattener(std::string(text, static_cast<size_t>(length)), folder)
      .GetFlatPath(path);
}

bool resolve(const std::string& start, std::string& file) {
  struct stat status {};
  if (!FileNameFlattener(start).GetFlatPath(file) || !examine(file, &status)) return false;
  for (int links = 0; S_ISLNK(status.st_mode) && links < kMostLinks; ++links)
    if (!follow(file) || !examine(file, &status)) return false;
  return S_ISREG(status.st_mode);
}

}  // namespace

FileNameFlattener::FileNameFlattener(const std::string& path) {
  success_ = completed([&] {
    path_ = path;
    base_ = working_folder();
    return Flatten();
  });
}

FileNameFlattener::FileNameFlattener(const std::string& path, const std::string& base) {
  success_ = completed([&] {
    path_ = path;
    return FileNameFlattener(base).GetFlatPath(base_) && Flatten();
  });
}

bool FileNameFlattener::Flatten() {
  success_ = completed([&] {
    std::string text = path_;
    if (!text.empty() && text.back() == '/') text.pop_back();
    if (text.empty() || text.front() != '/') text.insert(0, base_ + "/");
    text.push_back('/');
    flat_.clear();
    return append_steps(text, flat_);
  });
  return success_;
}

bool FileNameFlattener::GetFlatPath(std::string& out) {
  return success_ && completed([&] { return out = flat_, true; });
}

FileNameResolver::FileNameResolver(const std::string& path) {
  success_ = completed([&] {
    path_ = path;
    return resolve(path_, absolute_);
  });
}

bool FileNameResolver::GetAbsolutePath(std::string& out) {
  return success_ && completed([&] { return out = absolute_, true; });
}

unsigned voxcomn_filenameresolver_create(const char* path, void** resolver) {
  if (path == nullptr || resolver == nullptr) return kFailure;
  const bool made = completed([&] {
    *resolver = new FileNameResolver(path);
    return true;
  });
  return made ? kSuccess : kFailure;
}

unsigned voxcomn_filenameresolver_get_absolute_filename(void* resolver, char* buffer, int* size) {
  if (resolver == nullptr || buffer == nullptr || size == nullptr) return kFailure;
  std::string path;
  if (!static_cast<FileNameResolver*>(resolver)->GetAbsolutePath(path)) return kFailure;
  const int needed = static_cast<int>(path.size() + 1);  // the system's paths are far shorter
  const bool fits = *size >= needed;
  *size = needed;
  if (fits) memcpy(buffer, path.c_str(), path.size() + 1);
  return fits ? kSuccess : kFailure;
}

unsigned voxcomn_filenameresolver_destroy(void* resolver) {
  delete static_cast<FileNameResolver*>(resolver);
  return kSuccess;
}
