// platform/posix_system.cpp: one call per fact, bounded and close-on-exec.
#include "platform/posix_system.h"

#include <fcntl.h>
#include <grp.h>
#include <net/if.h>
#include <netdb.h>
#include <pwd.h>
#include <sched.h>
#include <sys/stat.h>
#include <sys/times.h>
#include <sys/utsname.h>
#include <unistd.h>
#include <utmpx.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

namespace quillon_com::orb::platform {
namespace {

// How long a name that is away is waited for: some turns of the processor at once, then, for a
// thread that lost the processor while it had the name, a tenth of a second in short sleeps.
constexpr int kZoneYields = 100;
constexpr int kZoneSleeps = 1000;
constexpr useconds_t kZoneSleep = 100;  // microseconds

// Guards the C library's cursor over the user-accounting database.
pthread_mutex_t accounting_mutex = PTHREAD_MUTEX_INITIALIZER;

// A field that ends at its first zero byte or where it is full.
template <size_t N>
std::string field_text(const char (&field)[N]) {
  return std::string(field, strnlen(field, N));
}

// Closes first, so that a command that keeps printing ends, and then waits for it.
struct PipeCloser {
  void operator()(FILE* pipe) const { pclose(pipe); }
};

void set_close_on_exec(int descriptor) { fcntl(descriptor, F_SETFD, FD_CLOEXEC); }

bool is_program(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         access(path.c_str(), X_OK) == 0;
}

// The words of a command line end at blanks and at what a shell gives a meaning of its own.
std::string_view first_word(std::string_view command) {
  const size_t begin = command.find_first_not_of(" \t\n");
  if (begin == std::string_view::npos) return {};
  command.remove_prefix(begin);
  return command.substr(0, command.find_first_of(" \t\n|&;<>()"));
}

}  // namespace

Descriptor::~Descriptor() {
  if (is_open()) close(number_);
}

unsigned PosixSystem::interface_index(const std::string& name) const {
  return if_nametoindex(name.c_str());
}

bool PosixSystem::family_usable(int family) const {
#ifdef SOCK_CLOEXEC
  const int descriptor = socket(family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
#else
  const int descriptor = socket(family, SOCK_DGRAM, 0);
#endif
  if (descriptor < 0) return false;
  close(descriptor);
  return true;
}

bool PosixSystem::zone_accepted(const std::string& zoned_address) const {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICHOST;
  addrinfo* list = nullptr;
  if (getaddrinfo(zoned_address.c_str(), nullptr, &hints, &list) != 0) return false;
  freeaddrinfo(list);
  return true;
}

bool PosixSystem::host_name(std::string* name) const {
  char buffer[2048] = {};
  if (gethostname(buffer, sizeof buffer - 1) != 0) return false;
  *name = buffer;
  return true;
}

bool PosixSystem::domain_name(std::string* domain) const {
  char buffer[2048] = {};
  if (getdomainname(buffer, sizeof buffer - 1) != 0) return false;
  *domain = buffer;
  return true;
}

bool PosixSystem::kernel_names(KernelNames* names) const {
  utsname kernel{};
  if (uname(&kernel) != 0) return false;
  names->node = field_text(kernel.nodename);
  names->machine = field_text(kernel.machine);
  names->release = field_text(kernel.release);
  return true;
}

time_t PosixSystem::wall_clock() const { return time(nullptr); }

timeval PosixSystem::wall_time() const {
  timeval now{};
  gettimeofday(&now, nullptr);
  return now;
}

TickCount PosixSystem::tick_count() const {
  tms used{};
  const clock_t now = times(&used);
  return {static_cast<int64_t>(now), sysconf(_SC_CLK_TCK)};
}

bool PosixSystem::local_time(time_t seconds, tm* broken_down) const {
  tm result{};
  if (localtime_r(&seconds, &result) == nullptr) return false;
  *broken_down = result;
  return true;
}

bool PosixSystem::utc_time(time_t seconds, tm* broken_down) const {
  tm result{};
  if (gmtime_r(&seconds, &result) == nullptr) return false;
  *broken_down = result;
  return true;
}

bool PosixSystem::zone_name(std::string* name) const {
  // A breakdown of the time on another thread takes the name away for a moment.
  char* volatile* const place = &tzname[0];
  for (int turn = 0; turn < kZoneYields + kZoneSleeps; ++turn) {
    if (const char* const text = *place) {
      *name = text;
      return true;
    }
    if (turn < kZoneYields)
      sched_yield();
    else
      usleep(kZoneSleep);
  }
  return false;
}

bool PosixSystem::next_session_entry(SessionEntry* entry) const {
  const MutexHold held(&accounting_mutex);
  const utmpx* record = getutxent();
  if (record == nullptr) return false;
  entry->type = record->ut_type;
  entry->id = field_text(record->ut_id);
  entry->user = field_text(record->ut_user);
  entry->line = field_text(record->ut_line);
  return true;
}

void PosixSystem::rewind_sessions() const {
  const MutexHold held(&accounting_mutex);
  setutxent();
}

bool PosixSystem::primary_group(const std::string& user, std::string* group) const {
  char buffer[16384] = {};
  passwd account{};
  passwd* found_account = nullptr;
  if (getpwnam_r(user.c_str(), &account, buffer, sizeof buffer, &found_account) != 0 ||
      found_account == nullptr) {
    return false;
  }
  const gid_t id = account.pw_gid;  // the account's texts end with the next use of the buffer
  ::group record{};
  ::group* found_group = nullptr;
  if (getgrgid_r(id, &record, buffer, sizeof buffer, &found_group) != 0 || found_group == nullptr) {
    return false;
  }
  *group = record.gr_name;
  return true;
}

bool PosixSystem::command_output(const std::string& command, size_t limit,
                                 std::string* output) const {
  if (!program_exists(command)) return false;
  const std::unique_ptr<FILE, PipeCloser> pipe(popen(command.c_str(), "r"));
  if (pipe == nullptr) return false;
  set_close_on_exec(fileno(pipe.get()));
  std::string text;
  read_descriptor(fileno(pipe.get()), limit, &text);
  *output = std::move(text);
  return true;
}

bool PosixSystem::file_size(const std::string& path, uint64_t* size) const {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return false;
  *size = static_cast<uint64_t>(status.st_size);
  return true;
}

bool PosixSystem::file_bytes(const std::string& path, size_t limit, std::string* bytes) const {
  // Without waiting: a pipe that nobody writes to is an empty file.
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  if (!file.is_open()) return false;
  std::string text;
  read_descriptor(file.number(), limit, &text);
  *bytes = std::move(text);
  return true;
}

void read_descriptor(int descriptor, size_t limit, std::string* bytes) {
  char chunk[8192];
  while (limit > 0) {
    const ssize_t got = read(descriptor, chunk, std::min(limit, sizeof chunk));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return;
    bytes->append(chunk, static_cast<size_t>(got));
    limit -= static_cast<size_t>(got);
  }
}

bool program_exists(std::string_view command) {
  const std::string_view word = first_word(command);
  if (word.empty()) return false;
  if (word.find('/') != std::string_view::npos) return is_program(std::string(word));
  const char* variable = getenv("PATH");
  std::string_view folders = variable != nullptr ? variable : "/usr/bin:/bin:/usr/sbin:/sbin";
  while (true) {
    const size_t end = folders.find(':');
    const std::string_view folder = folders.substr(0, end);
    const std::string prefix = folder.empty() ? "." : std::string(folder);
    if (is_program(prefix + "/" + std::string(word))) return true;
    if (end == std::string_view::npos) return false;
    folders.remove_prefix(end + 1);
  }
}

}  // namespace quillon_com::orb::platform
