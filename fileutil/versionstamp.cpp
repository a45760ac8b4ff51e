// fileutil/versionstamp.cpp: asks a plug-in library for its version.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "fileutil/platformmatch.h"
#include "portability/dynlib.h"

namespace {

struct PluginVersion {
  uint16_t major_number = 0;
  uint16_t minor_number = 0;
  uint16_t sub_minor = 0;
  uint16_t build = 0;
};

using GetVersion = int (*)(uint16_t* major_number, uint16_t* minor_number, uint16_t* sub_minor,
                           uint16_t* build);

bool ask_version(void* library, PluginVersion* version) {
  const auto get_version =
      reinterpret_cast<GetVersion>(voxGetProcAddress(library, "HBPLUGIN_GetVersion", nullptr));
  return get_version != nullptr && get_version(&version->major_number, &version->minor_number,
                                               &version->sub_minor, &version->build) == 0;
}

bool version_of(const char* path, PluginVersion* version) {
  void* const library = voxLoadLibrary(path, nullptr);
  if (library == nullptr) return false;
  const bool known = ask_version(library, version);
  voxFreeLibrary(library);
  return known;
}

// Writes the version of the library at `path`, put into words by `format`, which writes a text into
// a buffer of 32 bytes and returns its length.
template <class Format>
int write_stamp(const char* path, char* out, unsigned size, Format format) {
  if (out == nullptr) return 0;
  std::memset(out, 0, size);
  PluginVersion version;
  if (!version_of(path, &version)) return 0;
  char text[32];
  const int length = format(version, text, sizeof text);
  std::memcpy(out, text, std::min<size_t>(static_cast<size_t>(length) + 1, size));
  return 1;
}

}  // namespace

int voxcomn_GetFileResourceVersionStamp(const char* path, char* out, unsigned size) {
  return write_stamp(path, out, size, [](const PluginVersion& v, char* text, size_t room) {
    return snprintf(text, room, "%08x%08x", uint32_t{v.major_number} << 16 | v.minor_number,
                    uint32_t{v.sub_minor} << 16 | v.build);
  });
}

int voxcomn_GetFileResourceStringVersionStamp(const char* path, char* out, unsigned size) {
  return write_stamp(path, out, size, [](const PluginVersion& v, char* text, size_t room) {
    return snprintf(text, room, "%d.%d.%d.%d", v.major_number, v.minor_number, v.sub_minor,
                    v.build);
  });
}
