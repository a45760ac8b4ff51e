// platform/posix_system.h: the facts that POSIX systems are asked for in the same way.
#pragma once

#include <pthread.h>

#include <string>
#include <string_view>

#include "platform/system.h"

namespace quillon_com::orb::platform {

// Answers what Linux and macOS answer through the same calls; each system's class adds the rest and
// may override. Holds no state; the cursor over the user-accounting database is the C library's.
class PosixSystem : public System {
 public:
  unsigned interface_index(const std::string& name) const override;
  bool family_usable(int family) const override;
  // A numeric text only: no name service is asked.
  bool zone_accepted(const std::string& zoned_address) const override;

  bool host_name(std::string* name) const override;
  bool domain_name(std::string* domain) const override;
  bool kernel_names(KernelNames* names) const override;

  time_t wall_clock() const override;
  timeval wall_time() const override;
  TickCount tick_count() const override;
  bool local_time(time_t seconds, tm* broken_down) const override;
  bool utc_time(time_t seconds, tm* broken_down) const override;
  // A name that is away for a moment is waited for, a tenth of a second at most.
  bool zone_name(std::string* name) const override;

  bool next_session_entry(SessionEntry* entry) const override;
  void rewind_sessions() const override;
  // Both look-ups work in one buffer of 16384 bytes; an account or a group that needs more counts
  // as unknown.
  bool primary_group(const std::string& user, std::string* group) const override;
  // Starts no shell when the command's first word names no program that can be run. Waits for the
  // command to end, after its output has been closed.
  bool command_output(const std::string& command, size_t limit, std::string* output) const override;

  bool file_size(const std::string& path, uint64_t* size) const override;
  bool file_bytes(const std::string& path, size_t limit, std::string* bytes) const override;
};

// A file descriptor that is closed with its holder, also when memory runs out meanwhile.
class Descriptor {
 public:
  // Takes `number` over; a negative one is no descriptor.
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor();

  bool is_open() const { return number_ >= 0; }
  int number() const { return number_; }

 private:
  const int number_;
};

// A mutex of the process's, held for a scope; done without where it cannot be taken.
class MutexHold {
 public:
  explicit MutexHold(pthread_mutex_t* mutex)
      : mutex_(pthread_mutex_lock(mutex) == 0 ? mutex : nullptr) {}
  MutexHold(const MutexHold&) = delete;
  MutexHold& operator=(const MutexHold&) = delete;
  ~MutexHold() {
    if (mutex_ != nullptr) pthread_mutex_unlock(mutex_);
  }

 private:
  pthread_mutex_t* const mutex_;
};

// Appends what can be read from `descriptor`, at most `limit` bytes, to `bytes`. Stops at the end,
// at the limit and at the first error; a signal is no error. The descriptor stays open.
void read_descriptor(int descriptor, size_t limit, std::string* bytes);

// Whether the first word of `command` names a program: a text with a "/" is a path, any other is
// sought along PATH. A command without a word has none.
bool program_exists(std::string_view command);

}  // namespace quillon_com::orb::platform
