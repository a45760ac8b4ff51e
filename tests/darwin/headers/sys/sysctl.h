// tests/darwin/headers/sys/sysctl.h: the kernel's values by number and by name.
#pragma once

#include <sys/types.h>

#include "scripted.h"

#define CTL_KERN 1
#define CTL_HW 6
#define KERN_BOOTTIME 21
#define KERN_NISDOMAINNAME 22
#define HW_NCPU 3
#define HW_MEMSIZE 24

#ifdef __cplusplus
extern "C" {
#endif
int sysctl(int* name, u_int name_size, void* old, size_t* old_size, void* fresh, size_t fresh_size)
    ORB_SCRIPTED(sysctl);
int sysctlbyname(const char* name, void* old, size_t* old_size, void* fresh, size_t fresh_size)
    ORB_SCRIPTED(sysctlbyname);
#ifdef __cplusplus
}
#endif
