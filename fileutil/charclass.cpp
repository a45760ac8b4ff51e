// fileutil/charclass.cpp: the exported character classes and case maps.
//
// The two words below keep the C library's header from defining the same functions inline.
#define __NO_CTYPE 1
#define _DONT_USE_CTYPE_INLINE_ 1

#include "fileutil/conversions.h"
#include "platform/values.h"

namespace seam = quillon_com::orb::platform;

extern "C" {

ORB_EXPORT int(isalnum)(int c) { return seam::table_is_alnum(c) ? 1 : 0; }
ORB_EXPORT int(isspace)(int c) { return seam::table_is_space(c) ? 1 : 0; }
ORB_EXPORT int(tolower)(int c) { return seam::table_to_lower(c); }
ORB_EXPORT int(toupper)(int c) { return seam::table_to_upper(c); }

}  // extern "C"
