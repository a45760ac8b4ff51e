// tests/torture/filetree_rows.cpp: fileutil/filetree.h under torture, but for the removal of trees.
#include "fileutil/filetree.h"

#include <filesystem>

#include "tests/support/scoped_working_folder.h"
#include "tests/support/temp_dir.h"
#include "tests/support/torture.h"

namespace {

using orbtest::Fault;
using orbtest::ScopedWorkingFolder;
using orbtest::TempDir;
using orbtest::Trial;

constexpr const char* kFailed = "2147483656";

// A block of the copier's and some bytes more.
constexpr size_t kSize = 65536 + 100;

// Copies a file to a folder that is to be made; the answer is the result and the size of the copy.
template <auto copy, int last>
void copy_file(Trial& trial) {
  const TempDir folder;
  const ScopedWorkingFolder inside(folder.path());
  folder.write("source", std::string(kSize, 'x'));
  const bool copied = trial.call([] { return copy("source", "made/target", last); });
  std::error_code missing;
  const uintmax_t size = std::filesystem::file_size("made/target", missing);
  trial.answer(std::to_string(copied) + " " + (missing ? "nothing" : std::to_string(size)));
}

// What a copy gives: a read that fails is the end of the source, the kernel's part of the work can
// be done without it, and the first close is the destination's.
std::vector<Fault> copying(std::vector<Fault> opening) {
  std::vector<Fault> faults = {
      {"mkdir", "0 nothing"},
      {"malloc", "1 65636"},
      {"malloc onwards", "0 0"},
      {"read#1", "1 0"},
      {"read#1 onwards", "0 0"},
      {"read#2", "1 65636"},
      {"read#2 onwards", "0 65636"},
      {"write", "0 0"},
      {"sendfile", "1 65636"},
      {"sendfile#1 onwards", "0 65536"},
      {"sendfile#2 onwards", "0 65636"},
      {"close#1", "0 65636"},
      {"close#2", "1 65636"},
  };
  faults.insert(faults.end(), opening.begin(), opening.end());
  return faults;
}

template <auto make, class Path>
void make_chain(Trial& trial, Path path) {
  const TempDir folder;
  const ScopedWorkingFolder inside(folder.path());
  trial.call([path] { return make(path); });
  const bool made = std::filesystem::is_directory("made/in");
  trial.answer(std::string(trial.answer()) + (made ? " made" : " not made"));
}

char text[8];

const orbtest::Tortures rows({
    {"voxcomn_get_file_sizeA",
     "",
     "0",
     [](Trial& trial) {
       uint64_t size = 0;
       trial.call([&] { return voxcomn_get_file_sizeA("/", &size); });
     },
     {{"stat", kFailed}}},
    {"voxcomn_get_disk_free_spaceA",
     "",
     "0",
     [](Trial& trial) {
       uint64_t space = 0;
       trial.call([&] { return voxcomn_get_disk_free_spaceA("/", &space); });
     },
     {{"statfs", kFailed}}},
    {"voxcomn_chop_semicolon", "", "made",
     [](Trial& trial) {
       text[0] = ';';
       trial.call([] { return static_cast<void*>(voxcomn_chop_semicolon(text)); });
     }},
    {"voxcomn_append_backslash_check", "", "1",
     [](Trial& trial) {
       text[0] = 'a';
       text[1] = '\0';
       trial.call([] { return voxcomn_append_backslash_check(text); });
     }},
    {"voxcomn_MakeRecursiveDirectoryA",
     "",
     "2147483656 made",
     [](Trial& trial) { make_chain<voxcomn_MakeRecursiveDirectoryA>(trial, "made/in/"); },
     {{"mkdir", "2147483656 not made"}}},
    {"voxcomn_MakeRecursiveDirectoryW",
     "",
     "2147483656 made",
     [](Trial& trial) { make_chain<voxcomn_MakeRecursiveDirectoryW>(trial, L"made/in/"); },
     {{"mkdir", "2147483656 not made"}}},
    {"voxcomn_copy_file", "", "1 65636", copy_file<voxcomn_copy_file, 1>,
     copying({{"open", "0 nothing"}})},
    // Whether the destination is there is asked first.
    {"voxCopyFile", "to a new file", "1 65636", copy_file<voxCopyFile, 1>,
     copying({{"open", "0 nothing"}, {"open#1", "1 65636"}, {"open#1 onwards", "0 nothing"}})},
});

}  // namespace
