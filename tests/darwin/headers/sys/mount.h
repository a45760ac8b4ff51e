// tests/darwin/headers/sys/mount.h: the mount table; block sizes of 32 bits, block counts of 64.
#pragma once

#include <stdint.h>

#include "scripted.h"

struct statfs {
  uint32_t f_bsize;
  int32_t f_iosize;
  uint64_t f_blocks;
  uint64_t f_bfree;
  uint64_t f_bavail;
  uint64_t f_files;
  uint64_t f_ffree;
  int32_t f_fsid[2];
  uint32_t f_owner;
  uint32_t f_type;
  uint32_t f_flags;
  uint32_t f_fssubtype;
  char f_fstypename[16];
  char f_mntonname[1024];
  char f_mntfromname[1024];
  uint32_t f_flags_ext;
  uint32_t f_reserved[7];
};

#define MNT_RDONLY 0x00000001
#define MNT_LOCAL 0x00001000
#define MNT_ROOTFS 0x00004000
#define MNT_DONTBROWSE 0x00100000
#define MNT_NOWAIT 2

#ifdef __cplusplus
extern "C" {
#endif
int getfsstat(struct statfs* table, int size, int mode) ORB_SCRIPTED(getfsstat);
int statfs(const char* path, struct statfs* record) ORB_SCRIPTED(statfs);
#ifdef __cplusplus
}
#endif
