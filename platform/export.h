// platform/export.h: the visibility mark of everything that the library exports.
#pragma once

// The library is built with hidden visibility; what carries this mark is its interface.
#define ORB_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
// Opens declarations with unmangled names, in headers that also serve C.
#define ORB_EXTERN_C_BEGIN extern "C" {
// Closes them.
#define ORB_EXTERN_C_END }
#else
#define ORB_EXTERN_C_BEGIN
#define ORB_EXTERN_C_END
#endif
