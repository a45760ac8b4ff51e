// tests/soak/file_areas.cpp: rounds of files, searches, copies, folders, trees and paths, each in
// the worker's own folder.
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "fileutil/dirent.h"
#include "fileutil/filetree.h"
#include "fileutil/paths.h"
#include "fileutil/voxfio.h"
#include "portability/filehandle.h"
#include "tests/soak/soak.h"

namespace soak {
namespace {

constexpr uint32_t kReadAndWrite = 0xC0000000;
constexpr uint32_t kRead = 0x80000000;
constexpr uint32_t kCreateAlways = 2;
constexpr uint32_t kOpenExisting = 3;
constexpr uint32_t kDeleteOnClose = 0x4000000;
constexpr unsigned kFailure = 0x80000008;

bool exists(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0;
}

uint64_t size_of(const std::string& path) {
  uint64_t size = 0;
  return voxcomn_get_file_sizeA(path.c_str(), &size) == 0 ? size : ~uint64_t{0};
}

void use_file_handles(Worker& worker) {
  const std::string path = worker.path("handle");
  void* const file = voxCreateFileAW(path.c_str(), kReadAndWrite, 0, nullptr, kCreateAlways,
                                     kDeleteOnClose, nullptr);
  worker.expect(file != nullptr, "a file is made");
  if (file == nullptr) return;
  std::array<char, 4096> block{};
  block.fill(static_cast<char>('a' + worker.number()));
  uint32_t count = 0;
  worker.expect(voxWriteFile(file, block.data(), block.size(), &count, nullptr) == 1,
                "it is written");
  worker.expect(count == block.size() && voxGetFileSize(file, nullptr) == 4096, "to its size");
  worker.expect(voxSetFilePointer(file, 1000, nullptr, 0) == 1000, "its position is set");
  worker.expect(voxSetEndOfFile(file) == 1 && size_of(path) == 1000, "it is cut there");
  voxSetFilePointer(file, 0, nullptr, 0);
  std::array<char, 4096> read{};
  worker.expect(voxReadFile(file, read.data(), read.size(), &count, nullptr) == 1, "it is read");
  worker.expect(count == 1000 && std::memcmp(read.data(), block.data(), 1000) == 0, "as written");
  worker.expect(voxCloseHandle(file) == 1 && !exists(path), "a close removes it where asked to");
}

void use_temporary_names(Worker& worker) {
  std::vector<char> name(worker.path("ab").size() + 16);
  worker.expect(voxGetTempFileName(worker.path("").c_str(), "ab", 7, name.data()) == 7,
                "a temporary file is made");
  const std::string moved = worker.path("moved");
  worker.expect(voxMoveFile(name.data(), moved.c_str()) == 1, "a file is renamed");
  worker.expect(size_of(moved) == 0, "it is empty");
  worker.expect(unlink(moved.c_str()) == 0, "it is there");
}

void use_file_objects(Worker& worker) {
  const std::string path = worker.path("object");
  _vxFile_t* file = nullptr;
  worker.expect(vxCreateFile(path.c_str(), kReadAndWrite, 0, kCreateAlways, 0, &file) == 0,
                "a file object is made");
  if (file == nullptr) return;
  unsigned count = 0;
  worker.expect(vxWriteFile(file, "text", 4, &count) == 0 && count == 4, "it is written");
  uint64_t size = 0;
  worker.expect(file->operations->size(file, &size) == 0 && size == 4, "it tells its size");
  char byte = 0;
  worker.expect(vxReadFile(file, &byte, 1, &count) == kFailure, "its end is a failure to read");
  worker.expect(vxCloseFile(file) == 0, "it is closed");
  worker.expect(
      vxCreateFile(worker.path("none").c_str(), kRead, 0, kOpenExisting, 0, &file) == kFailure &&
          file == nullptr,
      "a missing file gives no object");
  unlink(path.c_str());
}

void search(Worker& worker) {
  FindDataDirEnt found{};
  const int handle = voxFindFirstDirEnt(worker.path("found/*.txt").c_str(), &found);
  worker.expect(handle >= 1 && handle <= kDirEntSlots, "a search finds a file");
  int files = handle < 1 ? 0 : 1;
  while (voxFindNextDirEnt(handle, &found) == 1) ++files;
  worker.expect(files == 3, "a search finds the three that match");
  worker.expect(voxcomn_findclose(handle) == 1, "a search is closed");
  worker.expect(voxcomn_findfirstA(worker.path("found/none*").c_str(), &found) == 0,
                "a search without a match is none");
}

void copy(Worker& worker) {
  const std::string source = worker.path("source");
  const std::string target = worker.path("copies/of/source");
  worker.expect(voxcomn_copy_file(source.c_str(), target.c_str(), 1), "a file is copied");
  worker.expect(size_of(target) == size_of(source), "a copy is as long as its source");
  worker.expect(voxCopyFile(source.c_str(), target.c_str(), 1) == 0, "a copy spares what is there");
  uint64_t space = 0;
  worker.expect(voxcomn_get_disk_free_spaceA(source.c_str(), &space) == 0 && space > 0,
                "free space is told");
  worker.expect(vxFolderExists(worker.path("copies/of\\").c_str()), "the parents are made");
}

void resolve_paths(Worker& worker) {
  std::string flat;
  worker.expect(FileNameFlattener("a/b/../c", "/x").GetFlatPath(flat) && flat == "/x/a/c",
                "a path is flattened");
  worker.expect(!FileNameFlattener("/../a").GetFlatPath(flat), "nothing lies above the root");
  void* resolver = nullptr;
  worker.expect(voxcomn_filenameresolver_create(worker.path("link").c_str(), &resolver) == 0,
                "a resolver is made");
  char buffer[1024];
  int size = sizeof buffer;
  worker.expect(voxcomn_filenameresolver_get_absolute_filename(resolver, buffer, &size) == 0 &&
                    worker.path("source") == buffer,
                "a link leads to its file");
  voxcomn_filenameresolver_destroy(resolver);
}

void make_and_remove_a_tree(Worker& worker) {
  const std::string tree = worker.path("tree");
  const std::string folders = tree + "/one/two/";
  voxcomn_MakeRecursiveDirectoryA(folders.c_str());
  worker.expect(vxFolderExists(folders.c_str()), "folders are made one in another");
  for (const char* name : {"/f", "/one/f", "/one/two/f", "/one/two/g"})
    worker.expect(voxcomn_copy_file(worker.path("found/a.txt").c_str(), (tree + name).c_str(), 0),
                  "a file is copied into a tree");
  voxcomn_delsubtree(tree.c_str());
  worker.expect(exists(tree) && !exists(tree + "/one") && !exists(tree + "/f"),
                "what is below a folder goes");
  voxcomn_deltree(tree.c_str());
  worker.expect(!exists(tree), "a tree goes");
}

}  // namespace

const std::vector<Area>& file_areas() {
  static const std::vector<Area> areas = {
      {"file handles", 1, use_file_handles},
      {"temporary names", 1, use_temporary_names},
      {"file objects", 1, use_file_objects},
      {"searches", 1, search},
      {"copies", 1, copy},
      {"paths", 1, resolve_paths},
      {"tree removal", 2, make_and_remove_a_tree},
  };
  return areas;
}

}  // namespace soak
