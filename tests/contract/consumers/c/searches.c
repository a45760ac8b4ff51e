// tests/contract/consumers/c/searches.c: directory searches and the wildcard matcher.
#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include "../expect.h"
#include "areas.h"
#include "fileutil/dirent.h"
#include "portability/filehandle.h"

void use_searches(void) {
  char name[64];
  EXPECT(voxGetTempFileName(".", "orbsearch.", 1, name) == 1);
  FindDataDirEnt found;
  const int search = voxFindFirstDirEnt("./orbsearch.*", &found);
  EXPECT(search >= 1 && search <= kDirEntSlots && pDirEntTable[search - 1] != NULL);
  EXPECT(strncmp(found.name, "orbsearch.", 10) == 0);
  EXPECT(found.attributes == 0 && found.size == 0);
  while (voxFindNextDirEnt(search, &found) == 1) EXPECT(strncmp(found.name, "orbsearch.", 10) == 0);
  EXPECT(voxFindCloseDirEnt(search) == 1);
  EXPECT(remove(name) == 0);

  // "." as a pattern matches every name that begins with it.
  const int other = voxcomn_findfirstA("./.", &found);
  EXPECT(other >= 1);
  bool itself = false;
  do {
    EXPECT(found.name[0] == '.');
    if (strcmp(found.name, ".") == 0) itself = found.attributes == kDirEntIsDirectory;
  } while (voxcomn_findnextA(other, &found));
  EXPECT(itself);
  EXPECT(voxcomn_findclose(other) == 1);
  EXPECT(voxcomn_findnextA(other, &found) == 0);
  EXPECT(voxcomn_findfirstA("./no such file", &found) == 0);
  EXPECT(voxWildCardMatch("a?c*", "abcdef") == 0);
  EXPECT(voxWildCardMatch("b*", "abcdef") == 1);
}
