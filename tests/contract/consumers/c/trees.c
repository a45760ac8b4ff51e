// tests/contract/consumers/c/trees.c: small file objects, copies, directory chains, removal of
// trees and resolved paths, below the working folder.
#include <stddef.h>
#include <stdio.h>
#include <string.h>
#include <wchar.h>

#include "../expect.h"
#include "areas.h"
#include "fileutil/filetree.h"
#include "fileutil/paths.h"
#include "fileutil/voxfio.h"
#include "portability/filehandle.h"

static void use_file_object(const char* name) {
  _vxFile_t* file = NULL;
  // Read and write, create or empty.
  EXPECT(vxCreateFile(name, 0xC0000000u, 0, 2, 0, &file) == 0 && file != NULL);
  unsigned count = 0;
  uint64_t size = 0;
  EXPECT(vxWriteFile(file, "content", 7, &count) == 0 && count == 7);
  EXPECT(vxGetFileSize(file, &size) == 0 && size == 7);
  char text[8];
  EXPECT(voxSetFilePointer(file->handle, 3, NULL, 0) == 3);
  EXPECT(vxReadFile(file, text, 8, &count) == 0 && count == 4 && memcmp(text, "tent", 4) == 0);
  EXPECT(vxReadFile(file, text, 8, &count) == 0x80000008u && count == 0);
  EXPECT(file->operations->size(file, &size) == 0);
  EXPECT(vxCloseFile(file) == 0);
}

static void use_resolver(const char* name) {
  void* resolver = NULL;
  EXPECT(voxcomn_filenameresolver_create(name, &resolver) == 0 && resolver != NULL);
  char path[4096];
  int size = 1;
  EXPECT(voxcomn_filenameresolver_get_absolute_filename(resolver, path, &size) == 0x80000008u);
  EXPECT(size > 1 && size <= (int)sizeof path);
  EXPECT(voxcomn_filenameresolver_get_absolute_filename(resolver, path, &size) == 0);
  EXPECT(path[0] == '/' && strlen(path) + 1 == (size_t)size);
  EXPECT(voxcomn_filenameresolver_destroy(resolver) == 0);
}

// Whether the file system tells of `name`.
static int there(const char* name) {
  uint64_t size;
  return voxcomn_get_file_sizeA(name, &size) == 0;
}

void use_trees(void) {
  char name[64], path[80];
  EXPECT(voxGetTempFileName(".", "orbtree.", 1, name) == 1);
  EXPECT(remove(name) == 0);
  snprintf(path, sizeof path, "%s/deep/down/", name);
  EXPECT(voxcomn_MakeRecursiveDirectoryA(path) == 0x80000008u);
  EXPECT(vxFolderExists(path));
  voxcomn_MakeRecursiveDirectoryW(L"./nothing to make");
  EXPECT(!vxFolderExists("./nothing to make"));

  snprintf(path, sizeof path, "%s/file", name);
  use_file_object(path);
  use_resolver(path);
  char copy[80];
  snprintf(copy, sizeof copy, "%s/deep/copy", name);
  EXPECT(voxcomn_copy_file(path, copy, 0));
  EXPECT(voxCopyFile(path, copy, 1) == 0);
  uint64_t size = 0;
  EXPECT(voxcomn_get_file_sizeA(copy, &size) == 0 && size == 7);
  EXPECT(voxcomn_get_disk_free_spaceA(name, &size) == 0);

  voxcomn_delsubtree(name);
  EXPECT(there(name) && !there(path) && !there(copy));
  voxcomn_deltree(name);
  EXPECT(!there(name));

  char list[8] = "a;b";
  EXPECT(voxcomn_chop_semicolon(list) == list + 1 && strcmp(list, "a") == 0);
  EXPECT(voxcomn_append_backslash_check(list) == 1 && strcmp(list, "a/") == 0);
}
