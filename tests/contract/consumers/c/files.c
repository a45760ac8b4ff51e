// tests/contract/consumers/c/files.c: Windows-style files in the working folder.
#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include "../expect.h"
#include "areas.h"
#include "portability/filehandle.h"

void use_files(void) {
  char first[64], second[64];
  EXPECT(voxGetTempFileName(".", "orb", 0, first) == 1);
  EXPECT(voxGetTempFileName(".", "orb", 12, second) == 12);
  EXPECT(voxMoveFile(first, second) == 1);
  EXPECT(voxSetFileAttributes(second, 0) == 1);

  // Read and write, must exist, removed at close.
  _voxHandleObject_t* file = voxCreateFileAW(second, 0xC0000000u, 0, NULL, 3, 0x4000000u, NULL);
  EXPECT(file != NULL && file->kind == HANDLE_TYPE_FILE);
  uint32_t count = 0, high = 9;
  EXPECT(voxWriteFile(file, "0123456789", 10, &count, NULL) == 1 && count == 10);
  EXPECT(voxGetFileSize(file, &high) == 10 && high == 0);
  EXPECT(voxSetFilePointer(file, -4, NULL, 2) == 6);
  char text[8] = "";
  EXPECT(voxReadFile(file, text, sizeof text, &count, NULL) == 1 && count == 4);
  EXPECT(memcmp(text, "6789", 4) == 0);
  EXPECT(voxSetFilePointer(file, 3, NULL, 0) == 3);
  EXPECT(voxSetEndOfFile(file) == 1);
  EXPECT(voxGetFileSize(file, NULL) == 3);
  EXPECT(voxCloseHandle(file) == 1);
  EXPECT(fopen(second, "rb") == NULL);
  EXPECT(voxCreateFileAW(second, 0x80000000u, 0, NULL, 3, 0, NULL) == NULL);
  EXPECT(voxGetLastError() == 38);
}
