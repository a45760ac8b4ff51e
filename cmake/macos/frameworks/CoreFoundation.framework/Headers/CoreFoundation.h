// CoreFoundation.framework: the few declarations that the library uses, for the cross build alone.
//
// A build on a Mac takes the headers of its own SDK and never sees this folder. Names, types and
// values are those of the system's interface; nothing is declared that the library does not call.
#pragma once

#include <MacTypes.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFData* CFDataRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef const struct __CFString* CFStringRef;
typedef CFTypeRef CFPropertyListRef;

typedef signed long CFIndex;
typedef unsigned long CFOptionFlags;
typedef unsigned long CFTypeID;
typedef UInt32 CFStringEncoding;

enum { kCFPropertyListImmutable = 0 };
enum { kCFStringEncodingUTF8 = 0x08000100 };

void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
CFTypeID CFDictionaryGetTypeID(void);
CFTypeID CFStringGetTypeID(void);
CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex capacity,
                           CFStringEncoding encoding);
Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key,
                                      const void** value);
CFPropertyListRef CFPropertyListCreateFromXMLData(CFAllocatorRef allocator, CFDataRef data,
                                                  CFOptionFlags mutability, CFStringRef* error)
    __attribute__((deprecated));

#ifdef __cplusplus
}
#endif
