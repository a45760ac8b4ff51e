// benchmarks/directories/searches.cpp: the rows of the searches, our own and those of the plain
// system calls.
#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "benchmarks/directories/rows.h"
#include "fileutil/dirent.h"

namespace orbbench {
namespace {

// Folders of one file system by their number of entries, made when first asked for and removed at
// the end of the program.
class Folders {
 public:
  explicit Folders(const char* parent) : parent_(parent) {}
  ~Folders() {
    std::error_code ignored;
    if (!root_.empty()) std::filesystem::remove_all(root_, ignored);
  }
  Folders(const Folders&) = delete;
  Folders& operator=(const Folders&) = delete;

  // The path of the folder; it is not there when the file system has no room.
  std::string with(long entries) {
    if (root_.empty()) {
      root_ = parent_ + "/orbbench.XXXXXX";
      if (mkdtemp(root_.data()) == nullptr) root_.clear();
    }
    const std::string folder = root_ + "/" + std::to_string(entries);
    if (root_.empty() || mkdir(folder.c_str(), 0700) != 0) return folder;
    for (long entry = 0; entry < entries; ++entry) {
      const char* const extension = entry % 2 == 0 ? ".txt" : ".log";
      const std::string file = folder + "/report-" + std::to_string(entry) + extension;
      close(open(file.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    }
    return folder;
  }

 private:
  std::string parent_;
  std::string root_;
};

Folders memory("/dev/shm");
Folders disk("/var/tmp");

struct Operation {
  const char* name;
  const char* pattern;
  long (*found)(long entries);
};
constexpr Operation kOperations[] = {
    {"find_all", "*", [](long entries) { return entries + 2; }},
    {"find_txt", "*.txt", [](long entries) { return entries / 2; }},
};

long our_search(const char* path) {
  FindDataDirEnt found;
  const int search = voxFindFirstDirEnt(path, &found);
  if (search == -1) return 0;
  long entries = 1;
  while (voxFindNextDirEnt(search, &found) == 1) ++entries;
  voxFindCloseDirEnt(search);
  return entries;
}

long plain_search(const char* path) {
  const char* const pattern = strrchr(path, '/') + 1;
  std::string entry_path(path, pattern);
  const size_t length = entry_path.size();
  DIR* const stream = opendir(entry_path.c_str());
  if (stream == nullptr) return 0;
  long entries = 0;
  while (const dirent* entry = readdir(stream)) {
    if (fnmatch(pattern, entry->d_name, 0) != 0) continue;
    entry_path.resize(length);
    entry_path += entry->d_name;
    struct stat status {};
    benchmark::DoNotOptimize(stat(entry_path.c_str(), &status));
    ++entries;
  }
  closedir(stream);
  return entries;
}

void our_goals(benchmark::State& state) {
  goal(state, "goal_ratio_WinPR", 1.0);
  goal(state, "stretch_ratio_WinPR", 0.8);
}

const bool added = [] {
  add_searches("ours", our_search, our_goals);
  add_searches("plain", plain_search);
  return true;
}();

}  // namespace

void add_searches(const char* who, Search search, Goals goals) {
  for (const auto& [system, folders] : {std::pair{"memory", &memory}, std::pair{"disk", &disk}}) {
    for (const Operation& operation : kOperations) {
      for (const long entries : {10L, 100L, 1'000L, 10'000L, 100'000L}) {
        const std::string name =
            std::string(operation.name) + "/" + system + "/" + std::to_string(entries) + "/" + who;
        const auto run = [=, &operation, folders = folders](benchmark::State& state) {
          const std::string path = folders->with(entries) + "/" + operation.pattern;
          if (search(path.c_str()) != operation.found(entries))
            state.SkipWithError("not all entries were found");
          for (auto _ : state) benchmark::DoNotOptimize(search(path.c_str()));
          if (goals != nullptr) goals(state);
          size(state, static_cast<double>(entries));
        };
        benchmark::RegisterBenchmark(name.c_str(), run);
      }
    }
  }
}

}  // namespace orbbench
