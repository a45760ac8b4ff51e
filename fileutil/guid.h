// fileutil/guid.h: time-based GUIDs and their text forms.
#pragma once

#include <stdint.h>

#include "platform/export.h"

ORB_EXTERN_C_BEGIN

// A version-1 GUID as it is made, most significant byte first in each field: time-low (4 bytes),
// time-mid (2), time-high with the version 1 in its high nibble (2), the 13-bit clock sequence with
// the variant (2), the node (6). Any 16 bytes may be read and written as one.
typedef struct voxGuid {
  uint8_t bytes[16];  // in the order above
} voxGuid;

// Fills `*guid` with a new GUID and returns `guid`; null, and nothing made, for a null one.
//
// The time is the wall clock's, in units of 100 ns since 1582-10-15. The clock sequence is random
// in the process's first GUID, stays, and goes up by one with every GUID that is made while the
// clock stands more than a second before that first one. Random numbers come from rand(), which the
// library never seeds: the GUIDs of two processes that do not seed it differ by their time alone.
// Quirk: the node is random, with its highest bit set, in the first GUID of a process and all zero
// in every later one; the machine's interfaces have no part in it.
// Quirk: two GUIDs made within one microsecond are equal.
// Safe from any thread; of several threads that make the first GUID at once one gets the node.
ORB_EXPORT voxGuid* voxCoCreateGuid(voxGuid* guid);

// Writes the 36 characters of `*guid` in lower-case hexadecimal and a terminator to `text`, which
// holds 37 bytes, and returns `text`. A null `text` or `guid` returns null, nothing written.
// Quirk: the first three fields are read as little-endian numbers, so that their bytes appear in
// reverse: 00 01 02 03 04 05 06 07 08 ... begins "03020100-0504-0706-08"; text made elsewhere in
// the system pairs the bytes so.
ORB_EXPORT char* voxUuidToStringA(const voxGuid* guid, char* text);

// Makes a GUID, writes its text in upper case within braces, 38 characters, to `text` of `size`
// bytes, the rest of which is cleared, and copies it to `*out` unless that is null. Returns 1; 0,
// with nothing made or written, when `text` is null.
// Quirk: a `size` of 38 or less cuts the text, which is then not terminated.
ORB_EXPORT int voxcomn_create_guid(voxGuid* out, char* text, unsigned size);

ORB_EXTERN_C_END
