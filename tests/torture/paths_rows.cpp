// tests/torture/paths_rows.cpp: fileutil/paths.h under torture.
#include "fileutil/paths.h"

#include <filesystem>
#include <optional>

#include "tests/support/temp_dir.h"
#include "tests/support/torture.h"

namespace {

using orbtest::Fault;
using orbtest::TempDir;
using orbtest::Trial;

constexpr const char* kFailed = "2147483656";

// Names that take memory wherever they are kept.
const std::string kFolder = "/a-folder-with-a-long-name";
const std::string kName = "a-name-that-is-long-as-well";

template <class Path>
void answer_result(Trial& trial, bool (Path::*get)(std::string&), Path& path) {
  std::string text;
  const bool known = (path.*get)(text);
  trial.answer(known ? text.substr(text.rfind('/') + 1) : "no result");
}

void flatten(Trial& trial) {
  std::optional<FileNameFlattener> made;
  trial.call([&] { made.emplace(kName); });
  answer_result(trial, &FileNameFlattener::GetFlatPath, *made);
}

void flatten_against(Trial& trial) {
  std::optional<FileNameFlattener> made;
  trial.call([&] { made.emplace(kName, kFolder); });
  answer_result(trial, &FileNameFlattener::GetFlatPath, *made);
}

// A file, and a link to a link to it.
class Links {
 public:
  Links() {
    folder_.write(kName, "");
    std::filesystem::create_symlink(kName, folder_.path("inner"));
    std::filesystem::create_symlink("inner", folder_.path("link"));
  }
  std::string link() const { return folder_.path("link"); }

 private:
  TempDir folder_;
};

void resolve(Trial& trial) {
  const Links links;
  const std::string link = links.link();
  std::optional<FileNameResolver> made;
  trial.call([&] { made.emplace(link); });
  answer_result(trial, &FileNameResolver::GetAbsolutePath, *made);
}

void create_resolver(Trial& trial) {
  const Links links;
  const std::string link = links.link();
  void* resolver = nullptr;
  char file[1024] = "";
  int size = sizeof file;
  const unsigned made =
      trial.call([&] { return voxcomn_filenameresolver_create(link.c_str(), &resolver); });
  const unsigned known = voxcomn_filenameresolver_get_absolute_filename(resolver, file, &size);
  if (made == 0) trial.answer(known == 0 ? "the file" : "no file");
  voxcomn_filenameresolver_destroy(resolver);
}

void ask_resolver(Trial& trial) {
  const Links links;
  void* resolver = nullptr;
  char file[1024];
  int size = sizeof file;
  voxcomn_filenameresolver_create(links.link().c_str(), &resolver);
  trial.call([&] { return voxcomn_filenameresolver_get_absolute_filename(resolver, file, &size); });
  voxcomn_filenameresolver_destroy(resolver);
}

const orbtest::Tortures rows({
    // Without the working folder the root stands for it.
    {"FileNameFlattener::FileNameFlattener(std::string const&)",
     "",
     kName.c_str(),
     flatten,
     {{"operator new", "no result"}, {"getcwd", kName.c_str()}, {"getcwd onwards", "no result"}}},
    {"FileNameFlattener::FileNameFlattener(std::string const&, std::string const&)",
     "",
     kName.c_str(),
     flatten_against,
     {{"operator new", "no result"}, {"getcwd", kName.c_str()}, {"getcwd onwards", "no result"}}},
    {"FileNameFlattener::Flatten()",
     "",
     "1",
     [](Trial& trial) {
       FileNameFlattener path(kName, kFolder);
       trial.call([&] { return path.Flatten(); });
     },
     {{"operator new", "0"}}},
    {"FileNameFlattener::GetFlatPath(std::string&)",
     "",
     "1",
     [](Trial& trial) {
       FileNameFlattener path(kName, kFolder);
       std::string out;
       trial.call([&] { return path.GetFlatPath(out); });
     },
     {{"operator new", "0"}}},
    {"FileNameResolver::FileNameResolver(std::string const&)",
     "",
     kName.c_str(),
     resolve,
     {{"operator new", "no result"},
      {"getcwd", kName.c_str()},  // the path is absolute
      {"getcwd onwards", "no result"},
      {"lstat", "no result"},
      {"readlink", "no result"}}},
    {"FileNameResolver::GetAbsolutePath(std::string&)",
     "",
     "1",
     [](Trial& trial) {
       const Links links;
       FileNameResolver path(links.link());
       std::string out;
       trial.call([&] { return path.GetAbsolutePath(out); });
     },
     {{"operator new", "0"}}},
    // The object and the path that it is made of; what fails behind that shows in the next call.
    {"voxcomn_filenameresolver_create",
     "",
     "the file",
     create_resolver,
     {{"operator new#1", kFailed},
      {"operator new#2", kFailed},
      {"operator new", "no file"},
      {"getcwd", "the file"},
      {"getcwd onwards", "no file"},
      {"lstat", "no file"},
      {"readlink", "no file"}}},
    {"voxcomn_filenameresolver_get_absolute_filename",
     "",
     "0",
     ask_resolver,
     {{"operator new", kFailed}}},
    {"voxcomn_filenameresolver_destroy", "", "0",
     [](Trial& trial) {
       void* resolver = nullptr;
       voxcomn_filenameresolver_create("/", &resolver);
       trial.call([&] { return voxcomn_filenameresolver_destroy(resolver); });
     }},
});

}  // namespace
