// examples/tree.cpp: a tree of folders made, filled with a copy, resolved and removed again.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "fileutil/filetree.h"
#include "fileutil/paths.h"
#include "fileutil/voxfio.h"

int main(int, char** arguments) {
  char base[] = "/tmp/orb-example-XXXXXX";
  if (mkdtemp(base) == nullptr) return 1;
  const std::string copy = std::string(base) + "/a/b/../b/copy";

  // The parent folders are made on the way; the status of their making is always a failure's.
  voxcomn_MakeRecursiveDirectoryA((std::string(base) + "/a/b/").c_str());
  if (!voxcomn_copy_file(arguments[0], copy.c_str(), 0)) return 1;
  uint64_t size = 0;
  voxcomn_get_file_sizeA(copy.c_str(), &size);

  std::string flat, real;
  FileNameFlattener(copy).GetFlatPath(flat);
  FileNameResolver(copy).GetAbsolutePath(real);
  std::printf("%s: %s\n", flat == real ? "flat and real" : "a link", flat.c_str() + sizeof base);

  voxcomn_deltree(base);
  std::printf("%s\n", vxFolderExists(base) ? "still there" : "removed");
  return size > 0 ? 0 : 1;
}
