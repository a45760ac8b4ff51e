// tests/support/calltrace.cpp: the watched calls.
#include "tests/support/calltrace.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>

#include "tests/support/liveblocks.h"
#include "tests/support/tracedcalls.h"

namespace {

thread_local orbtest::CallTrace* trace = nullptr;

}  // namespace

namespace orbtest {

void CallTrace::attach() { trace = this; }

void CallTrace::detach() {
  if (trace == this) trace = nullptr;
}

bool CallTrace::fails(const char* function) {
  if (made_ < kRoom) names_[made_] = function;
  ++made_;
  const bool due = failing_ == Failing::once ? made_ == nth_ : made_ >= nth_;
  const bool failing = nth_ != 0 && due;
  if (failing) {
    ++failures_;
    failed_ = function;
  }
  last_ = function;
  return failing;
}

std::string CallTrace::call(size_t index) const {
  if (index >= kRoom) return "more calls than can be told";
  size_t ordinal = 1;
  for (size_t each = 0; each < index; ++each)
    if (strcmp(names_[each], names_[index]) == 0) ++ordinal;
  return std::string(names_[index]) + "#" + std::to_string(ordinal);
}

bool is_traced() { return trace != nullptr; }

bool fails(const char* function, int code) {
  if (trace == nullptr || !trace->fails(function)) return false;
  errno = code;
  return true;
}

}  // namespace orbtest

using orbtest::fails;

extern "C" {

ORB_TRACED_THREAD(pthread_attr_init, ENOMEM, (pthread_attr_t * made), (made))
ORB_TRACED_THREAD(pthread_attr_setdetachstate, EINVAL, (pthread_attr_t * made, int state),
                  (made, state))
ORB_TRACED_THREAD_BEHIND(pthread_attr_destroy, EINVAL, (pthread_attr_t * made), (made))
ORB_TRACED_THREAD_BEHIND(pthread_cond_destroy, EBUSY, (pthread_cond_t * made), (made))
ORB_TRACED_THREAD_BEHIND(pthread_mutex_destroy, EBUSY, (pthread_mutex_t * made), (made))
ORB_TRACED_THREAD(pthread_cond_init, ENOMEM,
                  (pthread_cond_t * made, const pthread_condattr_t* with), (made, with))
ORB_TRACED_THREAD(pthread_cond_broadcast, EINVAL, (pthread_cond_t * condition), (condition))
ORB_TRACED_THREAD(pthread_cond_wait, EINVAL, (pthread_cond_t * condition, pthread_mutex_t* guard),
                  (condition, guard))
ORB_TRACED_THREAD(pthread_cond_timedwait, EINVAL,
                  (pthread_cond_t * condition, pthread_mutex_t* guard, const timespec* until),
                  (condition, guard, until))
ORB_TRACED_THREAD(pthread_create, EAGAIN,
                  (pthread_t * made, const pthread_attr_t* with, void* (*body)(void*),
                   void* argument),
                  (made, with, body, argument))
ORB_TRACED_THREAD(pthread_key_create, EAGAIN, (pthread_key_t * made, void (*at_end)(void*)),
                  (made, at_end))
ORB_TRACED_THREAD_BEHIND(pthread_key_delete, EINVAL, (pthread_key_t key), (key))
ORB_TRACED_THREAD(pthread_mutex_init, ENOMEM,
                  (pthread_mutex_t * made, const pthread_mutexattr_t* with), (made, with))
ORB_TRACED_THREAD(pthread_mutex_lock, EINVAL, (pthread_mutex_t * mutex), (mutex))
ORB_TRACED_THREAD(pthread_mutex_trylock, EBUSY, (pthread_mutex_t * mutex), (mutex))
ORB_TRACED_THREAD_BEHIND(pthread_mutex_unlock, EPERM, (pthread_mutex_t * mutex), (mutex))
ORB_TRACED_THREAD(pthread_setspecific, ENOMEM, (pthread_key_t key, const void* value), (key, value))
ORB_TRACED_THREAD(pthread_sigmask, EINVAL, (int how, const sigset_t* mask, sigset_t* before),
                  (how, mask, before))
ORB_TRACED_THREAD(sigwait, EINVAL, (const sigset_t* mask, int* signal), (mask, signal))

ORB_TRACED(int, gettimeofday, "gettimeofday", -1, EINVAL, (timeval * now, void* zone), (now, zone))
ORB_TRACED(ssize_t, read, "read", -1, EIO, (int file, void* bytes, size_t count),
           (file, bytes, count))
ORB_TRACED(ssize_t, write, "write", -1, ENOSPC, (int file, const void* bytes, size_t count),
           (file, bytes, count))
ORB_TRACED(off_t, lseek64, "lseek", -1, ESPIPE, (int file, off_t distance, int whence),
           (file, distance, whence))
ORB_TRACED(int, ftruncate64, "ftruncate", -1, EIO, (int file, off_t size), (file, size))
ORB_TRACED(int, fstat64, "fstat", -1, EIO, (int file, struct stat* status), (file, status))
ORB_TRACED(int, stat64, "stat", -1, EACCES, (const char* path, struct stat* status), (path, status))
ORB_TRACED(int, lstat64, "lstat", -1, EACCES, (const char* path, struct stat* status),
           (path, status))
ORB_TRACED(int, fstatat64, "fstatat", -1, EACCES,
           (int folder, const char* path, struct stat* status, int flags),
           (folder, path, status, flags))
ORB_TRACED(int, mkstemp64, "mkstemp", -1, EMFILE, (char* pattern), (pattern))
ORB_TRACED(int, rename, "rename", -1, EACCES, (const char* from, const char* to), (from, to))
ORB_TRACED(int, remove, "remove", -1, EACCES, (const char* path), (path))
ORB_TRACED(int, mkdir, "mkdir", -1, EACCES, (const char* path, mode_t mode), (path, mode))
ORB_TRACED(int, rmdir, "rmdir", -1, EACCES, (const char* path), (path))
ORB_TRACED(int, unlinkat, "unlinkat", -1, EACCES, (int folder, const char* path, int flags),
           (folder, path, flags))
ORB_TRACED(ssize_t, readlink, "readlink", -1, EACCES, (const char* path, char* text, size_t size),
           (path, text, size))
ORB_TRACED(char*, getcwd, "getcwd", nullptr, ENOENT, (char* path, size_t size), (path, size))
ORB_TRACED(ssize_t, sendfile64, "sendfile", -1, EIO,
           (int to, int from, off_t* offset, size_t count), (to, from, offset, count))
ORB_TRACED_BEHIND(int, close, "close", -1, EIO, (int file), (file))
ORB_TRACED(DIR*, opendir, "opendir", nullptr, EMFILE, (const char* path), (path))
ORB_TRACED(struct dirent*, readdir64, "readdir", nullptr, EIO, (DIR * folder), (folder))
ORB_TRACED_BEHIND(int, closedir, "closedir", -1, EBADF, (DIR * folder), (folder))
ORB_TRACED(void*, dlopen, "dlopen", nullptr, ENOENT, (const char* path, int mode), (path, mode))
ORB_TRACED(void*, dlsym, "dlsym", nullptr, ENOENT, (void* library, const char* name),
           (library, name))
ORB_TRACED_BEHIND(int, dlclose, "dlclose", -1, EINVAL, (void* library), (library))

ORB_TRACED(int, clock_gettime, "clock_gettime", -1, EINVAL, (clockid_t clock, timespec* now),
           (clock, now))
ORB_TRACED(tm*, gmtime_r, "gmtime_r", nullptr, EOVERFLOW, (const time_t* time, tm* broken),
           (time, broken))
int __real_open64(const char* path, int flags, mode_t mode);
int __wrap_open64(const char* path, int flags, ...);
int __wrap_open64(const char* path, int flags, ...) {
  if (fails("open", EMFILE)) return -1;
  va_list more;
  va_start(more, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  return __real_open64(path, flags, mode);
}

// The log takes no message of a tortured call.
void __wrap_openlog(const char*, int, int);
void __wrap_openlog(const char*, int, int) {}
void __wrap_vsyslog(int, const char*, va_list);
void __wrap_vsyslog(int, const char*, va_list) {}
void __wrap___vsyslog_chk(int, int, const char*, va_list);
void __wrap___vsyslog_chk(int, int, const char*, va_list) {}
void __wrap_closelog();
void __wrap_closelog() {}

void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void __real_free(void* block);

void* __wrap_malloc(size_t size);
void* __wrap_malloc(size_t size) {
  return fails("malloc", ENOMEM) ? nullptr : orbtest::note_block(__real_malloc(size));
}

void* __wrap_calloc(size_t count, size_t size);
void* __wrap_calloc(size_t count, size_t size) {
  return fails("malloc", ENOMEM) ? nullptr : orbtest::note_block(__real_calloc(count, size));
}

void* __wrap_realloc(void* block, size_t size);
void* __wrap_realloc(void* block, size_t size) {
  if (fails("malloc", ENOMEM)) return nullptr;
  orbtest::forget_block(block);
  return orbtest::note_block(__real_realloc(block, size));
}

void __wrap_free(void* block);
void __wrap_free(void* block) {
  orbtest::forget_block(block);
  __real_free(block);
}

}  // extern "C"

void* operator new(size_t size) {
  void* block = fails("operator new", ENOMEM) ? nullptr : __real_malloc(size);
  if (block == nullptr) throw std::bad_alloc();
  return orbtest::note_block(block);
}

void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return fails("operator new", ENOMEM) ? nullptr : orbtest::note_block(__real_malloc(size));
}

// Both array forms by name: a sanitizer's own would take their place otherwise.
void* operator new[](size_t size) { return operator new(size); }
void* operator new[](size_t size, const std::nothrow_t& nothrow) noexcept {
  return operator new(size, nothrow);
}

void operator delete(void* block) noexcept { __wrap_free(block); }
void operator delete(void* block, size_t) noexcept { __wrap_free(block); }
void operator delete[](void* block) noexcept { __wrap_free(block); }
void operator delete[](void* block, size_t) noexcept { __wrap_free(block); }
