// fileutil/treeremoval.cpp: removal of a directory's tree, by the types that its entries state.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <new>
#include <set>
#include <utility>

#include "fileutil/direntsearch.h"
#include "fileutil/filetree.h"
#include "fileutil/pathbuffer.h"

using quillon_com::orb::fileutil::begin_search;
using quillon_com::orb::fileutil::PathBuffer;
using quillon_com::orb::fileutil::search_stream;

namespace {

enum class Kind { directory, link, other };

// A search of every entry, closed with its holder.
class Entries {
 public:
  // `prefix` is the directory's path and a "/".
  explicit Entries(const PathBuffer& prefix) {
    DirEntSlot search{};
    memcpy(search.prefix, prefix.text(), prefix.length());
    search.pattern[0] = '*';
    handle_ = begin_search(search);
    stream_ = handle_ > 0 ? search_stream(handle_) : nullptr;
  }
  ~Entries() {
    if (handle_ > 0) voxFindCloseDirEnt(handle_);
  }
  Entries(const Entries&) = delete;
  Entries& operator=(const Entries&) = delete;

  bool are_searched() const { return stream_ != nullptr; }
  // Null at the end, and for a directory that could not be searched.
  const dirent* next() const { return stream_ == nullptr ? nullptr : readdir(stream_); }
  int descriptor() const { return dirfd(stream_); }

 private:
  int handle_;
  DIR* stream_;
};

// A name may be longer than the array that the system declares for it.
const char* name_of(const dirent* entry) {
  return reinterpret_cast<const char*>(entry) + offsetof(dirent, d_name);
}

bool is_dot(const char* name) { return strcmp(name, ".") == 0 || strcmp(name, "..") == 0; }

Kind kind_of(int folder, const dirent* entry) {
  if (entry->d_type == DT_DIR) return Kind::directory;
  if (entry->d_type == DT_LNK) return Kind::link;
  if (entry->d_type != DT_UNKNOWN) return Kind::other;
  struct stat status {};
  if (fstatat(folder, name_of(entry), &status, AT_SYMLINK_NOFOLLOW) != 0) return Kind::other;
  if (S_ISDIR(status.st_mode)) return Kind::directory;
  return S_ISLNK(status.st_mode) ? Kind::link : Kind::other;
}

class Removal {
 public:
  explicit Removal(const char* directory) : path_(directory) {}

  // Removes what the directory at the path holds; the path is the same again afterwards. False when
  // the directory could not be searched.
  bool empty() {
    const size_t length = path_.length();
    bool searched = false;
    if (path_.append("/")) {
      const Entries entries(path_);
      searched = entries.are_searched();
      while (const dirent* entry = entries.next()) {
        path_.cut(length + 1);
        const char* const name = name_of(entry);
        if (!is_dot(name) && path_.append(name)) remove(entries.descriptor(), entry);
      }
    }
    path_.cut(length);
    return searched;
  }

  const char* path() const { return path_.text(); }

 private:
  // Removes the entry of `folder` that the path leads to.
  void remove(int folder, const dirent* entry) {
    const char* const name = name_of(entry);
    const Kind kind = kind_of(folder, entry);
    struct stat target {};
    if (kind == Kind::directory) {
      empty();
      unlinkat(folder, name, AT_REMOVEDIR);
    } else if (kind == Kind::link && fstatat(folder, name, &target, 0) == 0 &&
               S_ISDIR(target.st_mode)) {
      empty_once(target);
    } else {
      unlinkat(folder, name, 0);
    }
  }

  // Empties the target of a link, which the path leads to, unless that is under way or done.
  // Without this, a few links that lead to one another would open as many ways as there are ways to
  // walk them. A target that could not be searched may yet be, from a level that is less deep.
  void empty_once(const struct stat& target) {
    try {
      const auto [note, is_new] = emptied_.emplace(target.st_dev, target.st_ino);
      if (is_new && !empty()) emptied_.erase(note);
    } catch (const std::bad_alloc&) {  // not noted, and so not followed
    }
  }

  PathBuffer path_;
  std::set<std::pair<dev_t, ino_t>> emptied_;  // of the targets of links
};

}  // namespace

void voxcomn_deltree(const char* directory) {
  if (directory == nullptr || *directory == '\0') return;
  Removal removal(directory);
  removal.empty();
  rmdir(removal.path());
}

void voxcomn_delsubtree(const char* directory) {
  if (directory == nullptr || *directory == '\0') return;
  Removal(directory).empty();
}
