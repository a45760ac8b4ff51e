// CoreServices.framework: the few declarations that the library uses, for the cross build alone.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

// Stores the answer to `selector`, and nothing when the result is not 0.
OSErr Gestalt(OSType selector, SInt32* response) __attribute__((deprecated));

#ifdef __cplusplus
}
#endif
