// benchmarks/filetree_benchmark.cpp: copies of files and removal of trees beside the C++ library's.
//
// A name is operation/size/where/who. "memory" is the system's shared-memory file system, "disk"
// the folder that the program is run in. Making the files to copy and the trees to remove, and
// removing what was copied, is not part of the time.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "benchmarks/second_thread.h"
#include "fileutil/filetree.h"

namespace {

namespace fs = std::filesystem;

// A folder of the program's own in `parent`, removed with the object.
class Folder {
 public:
  explicit Folder(const std::string& parent) : path_(parent + "/orbbench.XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no folder in " + parent);
  }
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string path(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

// Times `work` alone, with `prepare` before and `finish` after it in each turn.
void turns(benchmark::State& state, const std::function<void()>& prepare,
           const std::function<void()>& work, const std::function<void()>& finish) {
  using Clock = std::chrono::steady_clock;
  for (auto _ : state) {
    prepare();
    const Clock::time_point begin = Clock::now();
    work();
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count());
    finish();
  }
}

void fill(const std::string& path, size_t bytes) {
  std::string block(1 << 16, '\0');
  for (size_t at = 0; at < block.size(); ++at)
    block[at] = static_cast<char>(at * 2654435761U >> 24);
  std::ofstream out(path, std::ios::binary);
  for (size_t left = bytes; left > 0; left -= std::min(left, block.size()))
    out.write(block.data(), static_cast<std::streamsize>(std::min(left, block.size())));
}

using Copy = bool (*)(const char* from, const char* to);

void copy_file(benchmark::State& state, const std::string& where, size_t bytes, Copy copy) {
  const Folder folder(where);
  const std::string from = folder.path("from");
  const std::string to = folder.path("to");
  fill(from, bytes);
  bool copied = true;
  turns(
      state, [] {}, [&] { copied = copy(from.c_str(), to.c_str()) && copied; },
      [&] {
        copied = copied && fs::file_size(to) == bytes;
        fs::remove(to);
      });
  if (!copied) state.SkipWithError("a copy is not complete");
}

// `files` empty files, a hundred to a folder and ten such folders to one above.
void make_tree(const std::string& top, int files) {
  std::string folder;
  for (int each = 0; each < files; ++each) {
    if (each % 100 == 0) {
      folder = top + "/" + std::to_string(each / 1000) + "/" + std::to_string(each / 100 % 10);
      fs::create_directories(folder);
    }
    close(open((folder + "/file" + std::to_string(each)).c_str(), O_CREAT | O_WRONLY, 0600));
  }
}

using Remove = void (*)(const char* top);

void remove_tree(benchmark::State& state, const std::string& where, int files, Remove remove) {
  const Folder folder(where);
  const std::string top = folder.path("tree");
  bool removed = true;
  turns(
      state, [&] { make_tree(top, files); }, [&] { remove(top.c_str()); },
      [&] { removed = removed && !fs::exists(top); });
  if (!removed) state.SkipWithError("a tree is still there");
}

bool our_copy(const char* from, const char* to) { return voxcomn_copy_file(from, to, 1); }
bool their_copy(const char* from, const char* to) {
  return fs::copy_file(from, to, fs::copy_options::overwrite_existing);
}
void our_removal(const char* top) { voxcomn_deltree(top); }
void their_removal(const char* top) { fs::remove_all(top); }

// A row of ours with its goal, and one of the C++ library's.
template <class Run, class Operation>
void add(const std::string& name, double goal, Run run, Operation ours, Operation theirs) {
  const auto finish = [](benchmark::internal::Benchmark* row) {
    row->UseManualTime()->Unit(benchmark::kMillisecond);
  };
  finish(benchmark::RegisterBenchmark((name + "/ours").c_str(), [=](benchmark::State& state) {
    run(state, ours);
    state.counters["goal_ratio"] = goal;
  }));
  finish(benchmark::RegisterBenchmark((name + "/std_filesystem").c_str(),
                                      [=](benchmark::State& state) { run(state, theirs); }));
}

void register_all() {
  constexpr double kCopyGoal = 1.15;
  constexpr double kRemovalGoal = 1.25;
  const std::string memory = "/dev/shm";
  const std::string disk = fs::current_path();
  for (const auto& [place, where] : {std::pair{"memory", memory}, std::pair{"disk", disk}}) {
    for (const size_t mebibytes : {1, 64}) {
      const std::string name = "copy/" + std::to_string(mebibytes) + "MiB/" + place;
      add(
          name, kCopyGoal,
          [where = where, bytes = mebibytes << 20](benchmark::State& state, Copy copy) {
            copy_file(state, where, bytes, copy);
          },
          our_copy, their_copy);
    }
    for (const int files : {1000, 10'000, 100'000}) {
      if (where == disk && files > 10'000) continue;  // making it takes a minute
      const std::string name = "remove_tree/" + std::to_string(files) + "_files/" + place;
      add(
          name, kRemovalGoal,
          [where = where, files](benchmark::State& state, Remove remove) {
            remove_tree(state, where, files, remove);
          },
          our_removal, their_removal);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  const orbbench::SecondThread second;
  register_all();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
