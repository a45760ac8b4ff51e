// tests/support/fence.cpp: a mount name space in which everything is read-only.
#include "tests/support/fence.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace orbtest {
namespace {

constexpr const char* kTemporary = "/mnt";

bool set_read_only(const char* path) {
  mount_attr change{};
  change.attr_set = MOUNT_ATTR_RDONLY;
  return mount_setattr(AT_FDCWD, path, AT_RECURSIVE, &change, sizeof change) == 0;
}

bool is_writable(const std::string& folder) {
  const std::string path = folder + "/orbtest_fence";
  const int file = open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
  if (file < 0) return false;
  close(file);
  unlink(path.c_str());
  return true;
}

bool put_up() {
  if (unshare(CLONE_NEWNS) != 0) return false;
  if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return false;
  if (!set_read_only("/")) return false;
  // Not over the temporary folder: the program itself may have been built below it.
  if (mount("none", kTemporary, "tmpfs", 0, nullptr) != 0) return false;
  return setenv("TMPDIR", kTemporary, 1) == 0 && is_writable(kTemporary) && !is_writable("/etc") &&
         !is_writable("/dev") && !is_writable("/");
}

}  // namespace

bool fence_machine_off() {
  static const bool fenced = put_up();
  return fenced;
}

}  // namespace orbtest
