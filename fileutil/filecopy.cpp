// fileutil/filecopy.cpp: copies of files, and the chains of directories that they need.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "fileutil/filetree.h"
#include "fileutil/pathbuffer.h"
#include "platform/kernelcopy.h"

using quillon_com::orb::fileutil::PathBuffer;
using quillon_com::orb::platform::copy_in_kernel;

namespace {

constexpr uint32_t kFailure = 0x80000008;
constexpr mode_t kDirectoryMode = 0700;
constexpr mode_t kFileMode = 0666;
constexpr size_t kFirstSlash = 4;  // the lowest index of a "/" that ends a directory to be made
constexpr size_t kBlock = 65536;   // bytes copied at a time
constexpr size_t kSmallBlock = 512;

// Makes the directory in front of each "/" of `path`, the lowest indexes left out.
template <class Char>
void make_chain(const Char* path) {
  char buffer[PathBuffer::kMost + 1] = {};
  for (size_t index = 0; index < PathBuffer::kMost && path[index] != 0; ++index) {
    const char byte = static_cast<char>(path[index]);
    if (byte == '/' && index >= kFirstSlash) mkdir(buffer, kDirectoryMode);
    buffer[index] = byte;
  }
}

// An open file, closed with its holder.
class File {
 public:
  File(const char* path, int flags) : number_(open(path, flags | O_CLOEXEC, kFileMode)) {}
  ~File() { finish(); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  bool is_open() const { return number_ >= 0; }
  int number() const { return number_; }
  // Closes it at once; false when the system then tells that something was not written.
  bool finish() {
    const int number = number_;
    number_ = -1;
    return number < 0 || close(number) == 0;
  }

  // Once, however often a signal comes between; -1 on failure.
  ssize_t read_some(char* buffer, size_t size) const {
    return repeated([&] { return read(number_, buffer, size); });
  }
  bool write_all(const char* bytes, size_t size) const {
    while (size > 0) {
      const ssize_t done = repeated([&] { return write(number_, bytes, size); });
      if (done <= 0) return false;
      bytes += done;
      size -= static_cast<size_t>(done);
    }
    return true;
  }

 private:
  template <class Call>
  static ssize_t repeated(Call call) {
    ssize_t result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
  }

  int number_;
};

// Copies up to the end of `source` or its first read error.
bool copy_bytes(const File& source, const File& destination) {
  struct Free {
    void operator()(char* block) const { free(block); }
  };
  char small[kSmallBlock];
  const std::unique_ptr<char, Free> large(static_cast<char*>(malloc(kBlock)));
  char* const block = large != nullptr ? large.get() : small;
  const size_t size = large != nullptr ? kBlock : sizeof small;
  for (ssize_t got = 0; (got = source.read_some(block, size)) > 0;) {
    if (!destination.write_all(block, static_cast<size_t>(got))) return false;
    // More is to come; where the kernel stops, the block after it tells why.
    if (got == static_cast<ssize_t>(size)) copy_in_kernel(source.number(), destination.number());
  }
  return true;
}

// A pipe without a writer is there at once, instead of when one comes.
bool can_be_read(const char* path) { return File(path, O_RDONLY | O_NONBLOCK).is_open(); }

}  // namespace

uint32_t voxcomn_MakeRecursiveDirectoryA(const char* path) {
  if (path != nullptr) make_chain(path);
  return kFailure;
}

uint32_t voxcomn_MakeRecursiveDirectoryW(const wchar_t* path) {
  if (path != nullptr) make_chain(path);
  return kFailure;
}

bool voxcomn_copy_file(const char* source, const char* destination, int overwrite) {
  if (source == nullptr || destination == nullptr) return false;
  make_chain(destination);
  if (overwrite == 0 && can_be_read(destination)) return false;
  const File from(source, O_RDONLY);
  if (!from.is_open()) return false;
  File to(destination, O_RDWR | O_CREAT | O_TRUNC);
  return to.is_open() && copy_bytes(from, to) && to.finish();
}

int voxCopyFile(const char* source, const char* target, int failIfExists) {
  return voxcomn_copy_file(source, target, failIfExists == 0 ? 1 : 0) ? 1 : 0;
}
