// sysprops/collectors.h: names of processor codes, and whether the machine is a portable.
//
// The collectors themselves are the Get...Information members of ISysProps, which records.h
// declares beside the records that they fill; this header brings it along.
#pragma once

#include "platform/export.h"
#include "sysprops/records.h"

namespace quillon_com::orb::sysprops {

// Copies the model name of a native-processor-type code ('ixxx' gives "X86") with its terminator to
// `destination`, which has room for 11 bytes. Returns false with nothing copied when the code is
// unknown or `destination` is null.
ORB_EXPORT bool ConvertGestaltCPUTypeToString(long code, char* destination);

// The same for a system-architecture code (10 gives "Intel"); `destination` has room for 8 bytes.
ORB_EXPORT bool ConvertGestaltSysArchToString(long code, char* destination);

// Sets `portable` to whether the running machine is a portable: by the kind of its case where the
// system tells it, else by "book" in its model name, in any letter case. Returns false, with
// `portable` false, when neither can be read or memory runs out.
ORB_EXPORT bool IsPortableComputer(bool& portable);

}  // namespace quillon_com::orb::sysprops
