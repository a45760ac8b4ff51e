// tests/torture/filehandle_rows.cpp: portability/filehandle.h under torture.
#include "portability/filehandle.h"

#include <unistd.h>

#include "tests/portability/handle_scope.h"
#include "tests/support/temp_dir.h"
#include "tests/support/torture.h"

namespace {

using orbtest::Handle;
using orbtest::kUntouched;
using orbtest::TempDir;
using orbtest::Trial;

constexpr uint32_t kBoth = 0xC0000000;
constexpr uint32_t kDeleteOnClose = 0x4000000;

// A folder with the file "file" of three bytes.
class Folder {
 public:
  Folder() { folder_.write("file", "abc"); }
  std::string file() const { return folder_.path("file"); }
  const std::string& path() const { return folder_.path(); }

 private:
  TempDir folder_;
};

Handle open_file(const Folder& folder, uint32_t flags = 0x80) {
  return Handle(voxCreateFileAW(folder.file().c_str(), kBoth, 0, nullptr, 3, flags, nullptr));
}

template <uint32_t flags>
void create_file(Trial& trial) {
  const Folder folder;
  const std::string path = folder.file();
  voxCloseHandle(trial.call(
      [&] { return voxCreateFileAW(path.c_str(), kBoth, 0, nullptr, 4, flags, nullptr); }));
}

// Closes a file. Where the guard could not be locked it is still open; where it could not be given
// up its descriptor is.
template <uint32_t flags>
void close_file(Trial& trial) {
  const Folder folder;
  Handle file = open_file(folder, flags);
  const int descriptor = static_cast<_voxFileRecord_t*>(file->payload)->descriptor;
  trial.call([&] { return voxCloseHandle(file.get()); });
  if (trial.answer() == std::string("0") && file->references == 1) return;
  file.release();
  close(descriptor);
}

template <class Call>
void with_file(Trial& trial, Call call) {
  const Folder folder;
  const Handle file = open_file(folder);
  trial.call([&] { return call(file.get()); });
}

const orbtest::Tortures rows({
    {"voxCreateFileAW", "", "made", create_file<0>, {{"open", "null"}, {"malloc", "null", 12}}},
    {"voxCreateFileAW",
     "delete on close",
     "made",
     create_file<kDeleteOnClose>,
     {{"open", "null"}, {"malloc", "null", 12}}},
    {"voxReadFile",
     "",
     "1",
     [](Trial& trial) {
       with_file(trial, [](void* file) {
         char bytes[4];
         uint32_t count = 0;
         return voxReadFile(file, bytes, sizeof bytes, &count, nullptr);
       });
     },
     {{"read", "0"}}},
    {"voxWriteFile",
     "",
     "1",
     [](Trial& trial) {
       with_file(trial, [](void* file) {
         uint32_t count = 0;
         return voxWriteFile(file, "text", 4, &count, nullptr);
       });
     },
     {{"write", "0"}}},
    {"voxSetFilePointer",
     "",
     "2",
     [](Trial& trial) {
       with_file(trial, [](void* file) { return voxSetFilePointer(file, 2, nullptr, 0); });
     },
     {{"lseek", "-1"}}},
    {"voxSetEndOfFile",
     "",
     "1",
     [](Trial& trial) { with_file(trial, [](void* file) { return voxSetEndOfFile(file); }); },
     {{"lseek", "0"}, {"ftruncate", "0"}}},
    {"voxGetFileSize",
     "",
     "3",
     [](Trial& trial) {
       with_file(trial, [](void* file) { return voxGetFileSize(file, nullptr); });
     },
     {{"fstat", "-1"}}},
    {"voxGetTempFileName",
     "",
     "7",
     [](Trial& trial) {
       const Folder folder;
       char path[300] = "untouched";
       trial.call([&] { return voxGetTempFileName(folder.path().c_str(), "prefix", 7, path); });
       const bool made = access(path, F_OK) == 0;
       const bool untouched = path == std::string("untouched");
       if (!made && !untouched) trial.answer("a path without a file");
     },
     {{"operator new", "0"}, {"mkstemp", "0"}, {"close", "7"}}},
    {"voxMoveFile",
     "",
     "1",
     [](Trial& trial) {
       const Folder folder;
       const std::string from = folder.file();
       const std::string to = from + ".moved";
       trial.call([&] { return voxMoveFile(from.c_str(), to.c_str()); });
     },
     {{"rename", "0"}}},
    {"voxSetFileAttributes", "", "1",
     [](Trial& trial) { trial.call([] { return voxSetFileAttributes("/", 1); }); }},
    // The record of a file that cannot be closed or removed is kept, and nothing can reach it.
    {"voxCloseHandle",
     "file",
     "1",
     close_file<0>,
     {{"pthread_mutex_lock", "0"},
      {"pthread_mutex_unlock", "0", kUntouched, 2},
      {"close", "0", kUntouched, 2},
      {"pthread_cond_destroy", "1"},
      {"pthread_mutex_destroy", "1"}}},
    {"voxCloseHandle",
     "file to be removed",
     "1",
     close_file<kDeleteOnClose>,
     {{"pthread_mutex_lock", "0"},
      {"pthread_mutex_unlock", "0", kUntouched, 3},
      {"close", "0", kUntouched, 3},
      {"remove", "0", kUntouched, 3},
      {"pthread_cond_destroy", "1"},
      {"pthread_mutex_destroy", "1"}}},
});

}  // namespace
