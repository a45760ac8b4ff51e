// tests/contract/consumers/c/identifiers.c: GUIDs, time stamps, platform lists and names of the
// machine.
#include <stddef.h>
#include <string.h>
#include <wchar.h>

#include "../expect.h"
#include "areas.h"
#include "fileutil/guid.h"
#include "fileutil/platformmatch.h"
#include "fileutil/timestamp.h"

void use_identifiers(void) {
  char text[40];
  const voxGuid counted = {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}};
  EXPECT(voxUuidToStringA(&counted, text) == text);
  EXPECT(strcmp(text, "03020100-0504-0706-0809-0a0b0c0d0e0f") == 0);
  voxGuid made;
  EXPECT(voxCoCreateGuid(&made) == &made);
  EXPECT(made.bytes[6] >> 4 == 1);
  EXPECT(voxcomn_create_guid(&made, text, sizeof text) == 1);
  EXPECT(strlen(text) == 38 && text[0] == '{' && text[37] == '}');
}

void use_times(void) {
  char narrow[32];
  wchar_t wide[32];
  EXPECT(voxcomn_CreateLocalTimeStampA(narrow, 32) == 14 && strlen(narrow) == 14);
  EXPECT(voxcomn_CreateGmtTimeStampA(narrow, 5) == 14 && strlen(narrow) == 4);
  voxcomn_CreateLocalTimeStampW(wide, 32);
  EXPECT(wcslen(wide) == 14);
  voxcomn_CreateGmtTimeStampW(wide, 32);
  EXPECT(wcslen(wide) == 14);
  voxSystemTime now;
  EXPECT(voxGetSystemTime(&now) == &now && now.year >= 2024 && now.month >= 1 && now.month <= 12);
  const uint64_t ticks = voxGetTickCount();
  EXPECT(ticks != 0);
  voxcomn_delay(1000000000);
  EXPECT(voxGetTickCount() - ticks < 60000);
}

void use_platforms(void) {
  EXPECT(voxcomn_IsPlatformMatch("MACX:10:8:0", "WIN|MACX:10:6:0-10:9:9") == 0);
  EXPECT(voxcomn_IsPlatformMatch("MACX:10:5:0", "WIN|MACX:10:6:0-10:9:9") == 1);
  EXPECT(voxcomn_IsPlatformMatch("LINUX", "WIN|MACX") == 0x80000008u);
  char narrow[32];
  wchar_t wide[32];
  voxcomn_get_agent_softwareid(narrow, 32);
  voxcomn_get_agent_softwareid_W(wide, 32);
  EXPECT(strlen(narrow) == 16 && strncmp(narrow, "HUBAGENT", 8) == 0);
  EXPECT(wcslen(wide) == 16 && wcscmp(wide + 12, L"MACX") == 0);

  char name[1024];
  unsigned long size = sizeof name;
  EXPECT(voxGetComputerName(name, &size) == 1 && size == strlen(name));
  EXPECT(voxcomn_get_user_name(name, sizeof name) == 0 && name[0] != '\0');
  EXPECT(voxGetWindowsDirectory(narrow, 32) == 8 && strcmp(narrow, "/Library") == 0);
  EXPECT(voxGetSystemDirectory(narrow, 32) == 4 && strcmp(narrow, "/usr") == 0);
  EXPECT(voxGetModuleFileName(NULL, narrow, 32) == 0);
  EXPECT(voxGetFileVersionInfo("file", 0, 32, narrow) == 0);
  EXPECT(voxVerQueryValue(narrow, "\\") == 0);
}

void use_versions(const char* plugin) {
  char path[1024], text[24];
  EXPECT(strlen(plugin) < sizeof path);
  strcpy(path, plugin);
  EXPECT(voxcomn_GetFileResourceVersionStamp(path, text, sizeof text) == 1);
  EXPECT(strcmp(text, "0001000200030100") == 0);
  EXPECT(voxcomn_GetFileResourceStringVersionStamp(path, text, sizeof text) == 1);
  EXPECT(strcmp(text, "1.2.3.256") == 0);
  EXPECT(voxcomn_GetFileResourceVersionStamp(path, NULL, sizeof text) == 0);
}
