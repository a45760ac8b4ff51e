// examples/search.c: the files that a pattern names, with their sizes: search "/etc/*.conf"
#include <inttypes.h>
#include <stdio.h>

#include "fileutil/dirent.h"

int main(int count, char** arguments) {
  if (count != 2) {
    fprintf(stderr, "usage: %s PATH/PATTERN\n", arguments[0]);
    return 2;
  }
  FindDataDirEnt found;
  int search = voxcomn_findfirstA(arguments[1], &found);
  if (search == 0) {
    puts("nothing found");
    return 1;
  }
  do {
    printf("%-30s %10" PRId64 "\n", found.name, (int64_t)found.size);
  } while (voxcomn_findnextA(search, &found));
  voxcomn_findclose(search);
  return 0;
}
