// benchmarks/directories/peer_winpr.cpp: WinPR's rows.
#include <winpr/file.h>

#include "benchmarks/directories/rows.h"

namespace {

long search(const char* path) {
  WIN32_FIND_DATAA found;
  HANDLE handle = FindFirstFileA(path, &found);
  if (handle == INVALID_HANDLE_VALUE) return 0;
  long entries = 1;
  while (FindNextFileA(handle, &found)) ++entries;
  FindClose(handle);
  return entries;
}

const bool added = (orbbench::add_searches("WinPR", search), true);

}  // namespace
