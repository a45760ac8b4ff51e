// sysprops/releaseinfo.h: what release files and the kernel's names say of an operating system.
//
// Pure functions over the texts of a system that keeps no version list. A field of the release file
// that is present but empty counts as absent. An empty result means that nothing tells it.
#pragma once

#include <string>

#include "platform/system.h"

namespace quillon_com::orb::sysprops {

// The distribution's name: NAME, else the one by the older release files.
std::string release_name(const platform::ReleaseTexts& texts);

// The version: VERSION_ID, made exact where the distribution tells more (Debian's own version file
// when it continues VERSION_ID behind a ".", the x.y.z at the start of Ubuntu's VERSION); else
// BUILD_ID; else `kernel_release`.
std::string release_version(const platform::ReleaseTexts& texts, const std::string& kernel_release);

// The service-pack level: the number behind "-SP" in VERSION on SUSE, else the third of the
// components of `version`, which are separated by ".".
std::string release_patch(const platform::ReleaseTexts& texts, const std::string& version);

// Whether the installation is a server: by a server word in the name, VERSION and VARIANT (on SUSE,
// whose NAME is a mere "SLES", in PRETTY_NAME too, and by fewer words), by VARIANT_ID "server", or
// by a chassis made for servers (DMI 17, 23, 28 or 29).
bool release_is_server(const platform::ReleaseTexts& texts);

// "1" for a machine name that stands for 64 bits ("64" anywhere in it, or "s390x"), "0" for any
// other.
std::string release_bit_mode(const std::string& machine);

}  // namespace quillon_com::orb::sysprops
