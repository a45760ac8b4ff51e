// examples/identifiers.c: a new identifier, a time stamp, and whether this machine is meant.
#include <stdio.h>

#include "fileutil/guid.h"
#include "fileutil/platformmatch.h"
#include "fileutil/timestamp.h"

int main(void) {
  char guid[39] = "", stamp[15] = "", software[17] = "";
  if (voxcomn_create_guid(NULL, guid, sizeof guid) != 1) return 1;
  voxcomn_CreateLocalTimeStampA(stamp, sizeof stamp);
  voxcomn_get_agent_softwareid(software, sizeof software);
  printf("%s at %s by %s\n", guid, stamp, software);

  const uint32_t match = voxcomn_IsPlatformMatch("MACX:12:6:1", "OTHR|MACX:10:0:0-12:99:0");
  puts(match == 0 ? "for this platform" : "for another platform");
  return 0;
}
