// tests/torture/removal_rows.cpp: removal of trees under torture, in the fence of
// tests/support/fence.h.
#include <filesystem>
#include <set>

#include "fileutil/filetree.h"
#include "tests/support/temp_dir.h"
#include "tests/support/torture.h"
#include "tests/torture/removals.h"

namespace {

using orbtest::Fault;
using orbtest::TempDir;
using orbtest::Trial;

// The paths below `folder`, in order; links are not followed.
std::string left_in(const TempDir& folder) {
  std::set<std::string> paths;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path()))
    paths.insert(entry.path().lexically_relative(folder.path()).string());
  std::string text;
  for (const std::string& path : paths) text += (text.empty() ? "" : " ") + path;
  return text.empty() ? "nothing" : text;
}

template <auto remove>
void remove_chain(Trial& trial) {
  const TempDir folder;
  folder.write("tree/in/file", "");
  const std::string tree = folder.path("tree");
  trial.call([&] { remove(tree.c_str()); });
  trial.answer(left_in(folder));
}

template <auto remove>
void remove_with_link(Trial& trial) {
  const TempDir folder;
  folder.write("target/file", "");
  folder.make_dir("tree");
  std::filesystem::create_directory_symlink("../target", folder.path("tree/link"));
  const std::string tree = folder.path("tree");
  trial.call([&] { remove(tree.c_str()); });
  trial.answer(left_in(folder));
}

constexpr const char* kChain = "tree tree/in tree/in/file";
constexpr const char* kInner = "tree tree/in";
constexpr const char* kLinked = "target target/file tree tree/link";
constexpr const char* kEmptied = "target tree tree/link";

// Each directory is opened and read to its end, a place of the searches taken for it; it gives "."
// and ".." first. The last reads are those that find the end. `whole` is left when nothing fails,
// `shell` when the inner folder was removed and nothing fails but what comes then.
std::vector<Fault> chain_faults(const char* whole, const char* shell, std::vector<Fault> more) {
  std::vector<Fault> faults = {
      {"opendir", kChain},
      {"malloc", kChain, 35},
      {"readdir", kChain},
      {"readdir#7", whole},
      {"readdir#7 onwards", kInner},
      {"readdir#8", whole},
      {"readdir#8 onwards", shell},
      {"unlinkat#1", kChain},
      {"unlinkat#2", kInner},
      {"closedir", whole},
      {"closedir#1 onwards", kInner},
      {"closedir#2 onwards", shell},
      {"pthread_mutex_lock", whole},
      {"pthread_mutex_lock onwards", kChain, 35},
      {"pthread_mutex_unlock", whole},
      {"pthread_mutex_unlock onwards", kChain},
  };
  faults.insert(faults.end(), more.begin(), more.end());
  return faults;
}

// The target of a link is noted before it is emptied; a link whose target cannot be examined is
// removed like any other entry.
std::vector<Fault> link_faults(const char* unlinked, std::vector<Fault> more) {
  std::vector<Fault> faults = {
      {"opendir", kLinked},
      {"malloc", kLinked, 35},
      {"readdir", kLinked},
      {"readdir#7", kEmptied},
      {"readdir#8", kEmptied},
      {"fstatat", unlinked},
      {"fstatat onwards", kLinked},
      {"operator new", kLinked},
      {"unlinkat", kLinked},
      {"closedir", kEmptied},
      {"pthread_mutex_lock", kEmptied},
      {"pthread_mutex_lock onwards", kLinked, 35},
      {"pthread_mutex_unlock", kEmptied},
      {"pthread_mutex_unlock onwards", kLinked},
  };
  faults.insert(faults.end(), more.begin(), more.end());
  return faults;
}

const orbtest::Tortures rows({
    {"voxcomn_deltree", "a chain", "nothing", remove_chain<voxcomn_deltree>,
     chain_faults("nothing", "tree", {{"rmdir", "tree"}})},
    {"voxcomn_deltree", "a link to a folder", kEmptied, remove_with_link<voxcomn_deltree>,
     link_faults("target target/file", {{"rmdir", kEmptied}})},
    {"voxcomn_delsubtree", "a chain", "tree", remove_chain<voxcomn_delsubtree>,
     chain_faults("tree", "tree", {})},
    {"voxcomn_delsubtree", "a link to a folder", kEmptied, remove_with_link<voxcomn_delsubtree>,
     link_faults("target target/file tree", {})},
});

TEST(RemovalRows, AreOfTheFunctionsThatTheOtherProgramLeavesOut) {
  std::set<std::string> named;
  for (const orbtest::Torture* row : orbtest::all_tortures()) named.insert(row->function);
  EXPECT_EQ(orbtest::kRemovals, named);
}

}  // namespace
