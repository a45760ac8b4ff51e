// tests/torture/dirent_rows.cpp: fileutil/dirent.h under torture.
#include "fileutil/dirent.h"

#include "tests/support/temp_dir.h"
#include "tests/support/torture.h"

namespace {

using orbtest::Fault;
using orbtest::TempDir;
using orbtest::Trial;

// A folder with two files, and a search of it.
class Searched {
 public:
  Searched() {
    folder_.write("one", "1");
    folder_.write("two", "2");
  }
  std::string pattern() const { return folder_.path("*"); }

 private:
  TempDir folder_;
};

template <auto first, int none>
void find_first(Trial& trial) {
  const Searched folder;
  const std::string pattern = folder.pattern();
  FindDataDirEnt found{};
  const int search = trial.call([&] { return first(pattern.c_str(), &found); });
  if (search == none) return;
  trial.answer(found.name[0] == '\0' ? "a search without a name" : "a search");
  voxFindCloseDirEnt(search);
}

std::vector<Fault> finding(const char* none) {
  return {{"opendir", none},
          {"malloc", none, 35},
          {"readdir", none},
          {"stat", "a search"},  // without its attributes
          {"pthread_mutex_lock", "a search"},
          {"pthread_mutex_lock#1 onwards", none, 35},
          {"pthread_mutex_unlock", "a search"},
          {"pthread_mutex_unlock#1 onwards", none}};
}

template <auto next>
void find_next(Trial& trial) {
  const Searched folder;
  FindDataDirEnt found{};
  const int search = voxFindFirstDirEnt(folder.pattern().c_str(), &found);
  trial.call([&] { return next(search, &found); });
  voxFindCloseDirEnt(search);
}

template <auto finish>
void close_search(Trial& trial) {
  const Searched folder;
  FindDataDirEnt found{};
  const int search = voxFindFirstDirEnt(folder.pattern().c_str(), &found);
  trial.call([&] { return finish(search); });
  if (pDirEntTable[search - 1] != nullptr) trial.answer("still open");
}

const std::vector<Fault> stepping = {{"readdir", "0"}, {"stat", "1"}};

const orbtest::Tortures rows({
    {"voxFindFirstDirEnt", "", "a search", find_first<voxFindFirstDirEnt, -1>, finding("-1")},
    {"voxcomn_findfirstA", "", "a search", find_first<voxcomn_findfirstA, 0>, finding("0")},
    {"voxFindNextDirEnt", "", "1", find_next<voxFindNextDirEnt>, stepping},
    {"voxcomn_findnextA", "", "1", find_next<voxcomn_findnextA>, stepping},
    {"voxFindCloseDirEnt", "", "1", close_search<voxFindCloseDirEnt>, {{"closedir", "0"}}},
    {"voxcomn_findclose", "", "1", close_search<voxcomn_findclose>, {{"closedir", "0"}}},
    {"voxSetFindDataDirEnt",
     "",
     "made",
     [](Trial& trial) {
       dirent entry{};
       entry.d_name[0] = 'x';
       FindDataDirEnt found{};
       trial.call([&] { return voxSetFindDataDirEnt(&found, &entry, "/"); });
     },
     {{"stat", "made"}}},
    {"voxWildCardMatch", "", "0",
     [](Trial& trial) { trial.call([] { return voxWildCardMatch("*a?", "bab"); }); }},
});

}  // namespace
