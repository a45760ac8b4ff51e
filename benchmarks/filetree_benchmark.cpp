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
#include <optional>
#include <stdexcept>
#include <string>

#include "benchmarks/family.h"
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

  // Has everything written that the file system of the folder still keeps to itself.
  void write_back() const {
    const int descriptor = open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    syncfs(descriptor);
    close(descriptor);
  }

 private:
  std::string path_;
};

// Times `work` alone, with `prepare` before and `finish` after it in each turn, which begins with
// nothing left to be written to the folder's disk: what one row wrote is not to be another's time.
void turns(benchmark::State& state, const Folder& folder, const std::function<void()>& prepare,
           const std::function<void()>& work, const std::function<void()>& finish) {
  using Clock = std::chrono::steady_clock;
  for (auto _ : state) {
    prepare();
    folder.write_back();
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
      state, folder, [] {}, [&] { copied = copy(from.c_str(), to.c_str()) && copied; },
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
      state, folder, [&] { make_tree(top, files); }, [&] { remove(top.c_str()); },
      [&] { removed = removed && !fs::exists(top); });
  if (!removed) state.SkipWithError("a tree is still there");
}

bool our_copy(const char* from, const char* to) { return voxcomn_copy_file(from, to, 1); }
bool their_copy(const char* from, const char* to) {
  return fs::copy_file(from, to, fs::copy_options::overwrite_existing);
}
void our_removal(const char* top) { voxcomn_deltree(top); }
void their_removal(const char* top) { fs::remove_all(top); }

// What any copy does, without a library.
bool plain_copy(const char* from, const char* to) {
  const int source = open(from, O_RDONLY | O_CLOEXEC);
  const int target = open(to, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  static char block[64 << 10];
  ssize_t bytes = 0;
  while ((bytes = read(source, block, sizeof block)) > 0)
    if (write(target, block, static_cast<size_t>(bytes)) != bytes) break;
  close(target);
  close(source);
  return bytes == 0;
}

// A row of `run`'s; where it is ours, with its goal beside the C++ library's if there is one.
void add(const std::string& name, double size, std::optional<double> goal,
         const std::function<void(benchmark::State&)>& run) {
  const auto measure = [=](benchmark::State& state) {
    run(state);
    if (goal) orbbench::goal(state, "goal_ratio_std_filesystem", *goal);
    orbbench::size(state, size);
  };
  benchmark::RegisterBenchmark(name.c_str(), measure)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
}

void add_copy(const std::string& place, const std::string& where, size_t mebibytes) {
  const std::string name = "copy/" + std::to_string(mebibytes) + "MiB/" + place + "/";
  const size_t bytes = mebibytes << 20;
  const auto row = [&](const char* who, std::optional<double> goal, Copy copy) {
    add(name + who, static_cast<double>(bytes), goal,
        [=](benchmark::State& state) { copy_file(state, where, bytes, copy); });
  };
  row("ours", 1.15, our_copy);
  row("std_filesystem", std::nullopt, their_copy);
  row("plain", std::nullopt, plain_copy);
}

void add_removal(const std::string& place, const std::string& where, int files) {
  const std::string name = "remove_tree/" + std::to_string(files) + "_files/" + place + "/";
  const auto row = [&](const char* who, std::optional<double> goal, Remove remove) {
    add(name + who, files, goal,
        [=](benchmark::State& state) { remove_tree(state, where, files, remove); });
  };
  row("ours", 1.25, our_removal);
  row("std_filesystem", std::nullopt, their_removal);
}

const bool added = [] {
  const std::string memory = "/dev/shm";
  const std::string disk = fs::current_path();
  for (const size_t mebibytes : {1, 8, 64}) {
    add_copy("memory", memory, mebibytes);
    add_copy("disk", disk, mebibytes);
  }
  for (const int files : {100, 1000, 10'000, 100'000}) {
    add_removal("memory", memory, files);
    // On disk few take no longer than what else the disk does, and making many takes a minute.
    if (files == 1000 || files == 10'000) add_removal("disk", disk, files);
  }
  return true;
}();

}  // namespace
