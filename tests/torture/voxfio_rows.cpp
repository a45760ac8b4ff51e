// tests/torture/voxfio_rows.cpp: fileutil/voxfio.h under torture.
#include "fileutil/voxfio.h"

#include <unistd.h>

#include <utility>

#include "tests/support/temp_dir.h"
#include "tests/support/torture.h"

namespace {

using orbtest::kUntouched;
using orbtest::TempDir;
using orbtest::Trial;

constexpr uint32_t kBoth = 0xC0000000;
constexpr const char* kFailed = "2147483656";

// An open file of three bytes.
class OpenFile {
 public:
  OpenFile() { vxCreateFile(folder_.write("file", "abc").c_str(), kBoth, 0, 3, 0, &file_); }
  ~OpenFile() { vxCloseFile(file_); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  _vxFile_t* get() const { return file_; }
  int descriptor() const {
    return static_cast<_voxFileRecord_t*>(file_->handle->payload)->descriptor;
  }
  void release() { file_ = nullptr; }

 private:
  TempDir folder_;
  _vxFile_t* file_ = nullptr;
};

const orbtest::Tortures rows({
    {"vxCreateFile",
     "",
     "0 made",
     [](Trial& trial) {
       const TempDir folder;
       const std::string path = folder.path("file");
       _vxFile_t* file = nullptr;
       const uint32_t status =
           trial.call([&] { return vxCreateFile(path.c_str(), kBoth, 0, 4, 0, &file); });
       trial.answer(std::to_string(status) + " " + orbtest::answer_text(file));
       vxCloseFile(file);
     },
     // The object and its table, then the handle and its record, for which an error word is stored.
     {{"malloc#1", "2147483656 null"},
      {"malloc#2", "2147483656 null"},
      {"malloc", "2147483656 null", 12},
      {"open", "2147483656 null"}}},
    // The handle of a file that could not be closed stays, and nothing can reach it.
    {"vxCloseFile",
     "",
     "0",
     [](Trial& trial) {
       OpenFile file;
       const int descriptor = file.descriptor();
       trial.call([&] { return vxCloseFile(file.get()); });
       file.release();
       close(descriptor);
     },
     {{"pthread_mutex_lock", kFailed, kUntouched, 2},
      {"pthread_mutex_unlock", kFailed, kUntouched, 2},
      {"close", kFailed, kUntouched, 2},
      {"pthread_cond_destroy", "0"},
      {"pthread_mutex_destroy", "0"}}},
    {"vxReadFile",
     "",
     "0",
     [](Trial& trial) {
       const OpenFile file;
       char bytes[4];
       unsigned count = 0;
       trial.call([&] { return vxReadFile(file.get(), bytes, sizeof bytes, &count); });
     },
     {{"read", kFailed}}},
    {"vxWriteFile",
     "",
     "0",
     [](Trial& trial) {
       const OpenFile file;
       unsigned count = 0;
       trial.call([&] { return vxWriteFile(file.get(), "text", 4, &count); });
     },
     {{"write", kFailed}}},
    {"vxGetFileSize",
     "",
     "0",
     [](Trial& trial) {
       const OpenFile file;
       uint64_t size = 0;
       trial.call([&] { return vxGetFileSize(file.get(), &size); });
     },
     {{"fstat", kFailed}}},
    {"vxFolderExists",
     "",
     "1",
     [](Trial& trial) { trial.call([] { return vxFolderExists("/"); }); },
     {{"stat", "0"}}},
});

}  // namespace
