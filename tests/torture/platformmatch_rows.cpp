// tests/torture/platformmatch_rows.cpp: fileutil/platformmatch.h under torture.
#include "fileutil/platformmatch.h"

#include <dlfcn.h>
#include <utmpx.h>

#include <string_view>

#include "portability/dynlib.h"
#include "tests/support/silent_output.h"
#include "tests/support/temp_dir.h"
#include "tests/support/torture.h"

namespace {

using orbtest::Fault;
using orbtest::kUntouched;
using orbtest::plain_row;
using orbtest::TempDir;
using orbtest::Trial;

constexpr const char* kFailed = "2147483656";

// Gives back the library at `path` where that could not be done.
void unload(const char* path) {
  void* const image = dlopen(path, RTLD_LAZY | RTLD_NOLOAD);
  if (image == nullptr) return;
  dlclose(image);
  void* const library = voxLoadLibrary(path, nullptr);
  voxFreeLibrary(library);
  voxFreeLibrary(library);
}

template <auto ask>
void ask_version(Trial& trial) {
  char stamp[20] = "old";
  const int known = trial.call([&] { return ask(ORB_SMALL_PLUGIN, stamp, sizeof stamp); });
  trial.answer(std::to_string(known) + " " + stamp);
  unload(ORB_SMALL_PLUGIN);
}

// Locked in turn: the message, the list (16 where it cannot be) and in it the table for the new
// library; the message of the look-up; the table, the list and in it the table to release it. What
// fails with all behind it before the look-up lets that fail; before the release it lets that fail.
std::vector<Fault> version_faults(const char* answer) {
  return {{"malloc", "0 ", 12},
          {"dlopen", "0 ", kUntouched, 1},  // Quirk: the record stays
          {"dlsym#1", answer},              // it has no entry point then
          {"dlsym#2", "0 "},
          {"dlsym onwards", "0 ", 16},
          {"dlclose", answer},
          {"pthread_mutex_lock", answer},
          {"pthread_mutex_lock#2", "0 ", 16},
          {"pthread_mutex_lock#6", answer, 16},
          {"pthread_mutex_lock onwards", "0 ", 16},
          {"pthread_mutex_lock#5 onwards", answer, 16},
          {"pthread_mutex_lock#6 onwards", answer, 16},
          {"pthread_mutex_lock#7 onwards", answer},
          {"pthread_mutex_unlock", answer},
          {"pthread_mutex_unlock onwards", "0 ", 16},
          {"pthread_mutex_unlock#5 onwards", answer, 16},
          {"pthread_mutex_unlock#6 onwards", answer},
          {"pthread_mutex_unlock#7 onwards", answer}};
}

// The machine's accounting file is one of ours: one user, who has no account.
class OneUser {
 public:
  OneUser() {
    utmpx user{};
    user.ut_type = USER_PROCESS;
    std::string_view("nobody-of-note").copy(user.ut_user, sizeof user.ut_user);
    const std::string file =
        folder_.write("utmp", std::string_view(reinterpret_cast<const char*>(&user), sizeof user));
    utmpxname(file.c_str());
    setutxent();
  }
  ~OneUser() {
    endutxent();
    utmpxname(_PATH_UTMPX);
  }
  OneUser(const OneUser&) = delete;
  OneUser& operator=(const OneUser&) = delete;

 private:
  TempDir folder_;
};

void list_users(Trial& trial) {
  const OneUser user;
  char users[40] = "";
  uint32_t status = 0;
  {
    const orbtest::SilentOutput silent;
    status = trial.call([&] { return voxcomn_get_user_name(users, sizeof users); });
  }
  if (status == 0) trial.answer(users);
}

const orbtest::Tortures rows({
    plain_row("voxcomn_IsPlatformMatch", "1",
              [] { return voxcomn_IsPlatformMatch("MACX:9:0:0", "MACX:10:0:0-11:0:0"); }),
    plain_row("voxcomn_get_agent_softwareid", "done",
              [] {
                char id[20];
                voxcomn_get_agent_softwareid(id, sizeof id);
              }),
    plain_row("voxcomn_get_agent_softwareid_W", "done",
              [] {
                wchar_t id[20];
                voxcomn_get_agent_softwareid_W(id, 20);
              }),
    // What runs out is told, and the next call starts at the first session again.
    {"voxcomn_get_user_name",
     "",
     "nobody-of-note",
     list_users,
     {{"operator new", kFailed},
      {"pthread_mutex_lock", "nobody-of-note"},  // done without
      {"pthread_mutex_lock#1 onwards", kFailed},
      {"pthread_mutex_lock#2 onwards", kFailed},
      {"pthread_mutex_lock#3 onwards", kFailed},
      {"pthread_mutex_unlock", "nobody-of-note"},
      {"pthread_mutex_unlock#1 onwards", kFailed},
      {"pthread_mutex_unlock#2 onwards", kFailed},
      {"pthread_mutex_unlock#3 onwards", kFailed},
      {"getpwnam_r", "nobody-of-note"},
      {"getpwnam_r onwards", kFailed},
      {"stat", "nobody-of-note"},  // of the directory service's program, which is not there
      {"stat onwards", kFailed}}},
    {"voxcomn_GetFileResourceVersionStamp", "", "1 0001000200030004",
     ask_version<voxcomn_GetFileResourceVersionStamp>, version_faults("1 0001000200030004")},
    {"voxcomn_GetFileResourceStringVersionStamp", "", "1 1.2.3.4",
     ask_version<voxcomn_GetFileResourceStringVersionStamp>, version_faults("1 1.2.3.4")},
    {"voxGetComputerName",
     "",
     "1",
     [](Trial& trial) {
       char name[400];
       unsigned long size = sizeof name;
       trial.call([&] { return voxGetComputerName(name, &size); });
     },
     {{"uname", "0"}, {"operator new", "0"}}},
    plain_row("voxGetWindowsDirectory", "8",
              [] {
                char path[20];
                return voxGetWindowsDirectory(path, sizeof path);
              }),
    plain_row("voxGetSystemDirectory", "4",
              [] {
                char path[20];
                return voxGetSystemDirectory(path, sizeof path);
              }),
    plain_row("voxGetModuleFileName", "0",
              [] {
                char path[20];
                return voxGetModuleFileName(nullptr, path, sizeof path);
              }),
    plain_row("voxGetFileVersionInfo", "0", [] { return voxGetFileVersionInfo("/"); }),
    plain_row("voxVerQueryValue", "0", [] { return voxVerQueryValue("/"); }),
});

}  // namespace
