# The one list of sources, by area. The platform list at the end is the only choice of operating
# system in the project.

set(ORB_PORTABILITY_SOURCES
  portability/doublelist.cpp
  portability/dynlib.cpp
  portability/errorwords.cpp
  portability/filehandle.cpp
  portability/forks.cpp
  portability/handles.cpp
  portability/interlocked.cpp
  portability/libraryimages.cpp
  portability/linkedlist.cpp
  portability/processid.cpp
  portability/selock.cpp
  portability/selock_forks.cpp
  portability/selock_notify.cpp
  portability/signals.cpp
  portability/singlelist.cpp
  portability/spinlock.cpp
  portability/systemlog.cpp
  portability/threadevents.cpp
  portability/threads.cpp
  portability/tls.cpp
  portability/waits.cpp
)

set(ORB_FILEUTIL_SOURCES
  fileutil/charclass.cpp
  fileutil/dirent.cpp
  fileutil/filecopy.cpp
  fileutil/filetree.cpp
  fileutil/guid.cpp
  fileutil/localetext.cpp
  fileutil/machinenames.cpp
  fileutil/numbers.cpp
  fileutil/paths.cpp
  fileutil/platformmatch.cpp
  fileutil/softwareid.cpp
  fileutil/strings.cpp
  fileutil/timestamp.cpp
  fileutil/treeremoval.cpp
  fileutil/uptime.cpp
  fileutil/utctime.cpp
  fileutil/utf8.cpp
  fileutil/versionstamp.cpp
  fileutil/voxfio.cpp
  fileutil/wildcard.cpp
)

set(ORB_NETWORK_SOURCES
  network/addresstext.cpp
  network/connect.cpp
  network/enumerate.cpp
  network/hostnames.cpp
  network/ipaddress.cpp
  network/ipv6.cpp
  network/netinterface.cpp
  network/networkutil.cpp
  network/peermatch.cpp
  network/resolver.cpp
)

set(ORB_SESSION_SOURCES
  session/domains.cpp
  session/loggedonusers.cpp
  session/usertext.cpp
)

set(ORB_SYSPROPS_SOURCES
  sysprops/catalogue.cpp
  sysprops/cpu.cpp
  sysprops/disk.cpp
  sysprops/gestaltnames.cpp
  sysprops/helpers.cpp
  sysprops/keys.cpp
  sysprops/memory.cpp
  sysprops/miscinfo.cpp
  sysprops/networkinfo.cpp
  sysprops/osinfo.cpp
  sysprops/records.cpp
  sysprops/releaseinfo.cpp
  sysprops/wrappers.cpp
)

set(ORB_CONFIG_SOURCES
  config/policykeys.cpp
  config/productkeys.cpp
  config/taskkeys.cpp
)

# Pure parsers and what POSIX gives alike: built everywhere, so that every machine tests them.
set(ORB_PLATFORM_SOURCES
  platform/errno_numbers.cpp
  platform/linux_cpuinfo.cpp
  platform/linux_mounts.cpp
  platform/linux_text.cpp
  platform/posix_system.cpp
  platform/system.cpp
  platform/version_list.cpp
  platform/version_list_binary.cpp
  platform/version_list_xml.cpp
)

set(ORB_DARWIN_SOURCES
  platform/darwin_assertion.cpp
  platform/darwin_freespace.cpp
  platform/darwin_interfaces.cpp
  platform/darwin_kernelcopy.cpp
  platform/darwin_lists.cpp
  platform/darwin_system.cpp
  platform/darwin_values.cpp
)

set(ORB_LINUX_SOURCES
  platform/linux_assertion.cpp
  platform/linux_freespace.cpp
  platform/linux_interfaces.cpp
  platform/linux_kernelcopy.cpp
  platform/linux_processor.cpp
  platform/linux_sessions.cpp
  platform/linux_system.cpp
  platform/linux_values.cpp
  platform/linux_volumes.cpp
)

# What every system builds; with the list of one system it is the library.
set(ORB_COMMON_SOURCES ${ORB_PORTABILITY_SOURCES} ${ORB_FILEUTIL_SOURCES} ${ORB_NETWORK_SOURCES} ${ORB_SESSION_SOURCES}
                       ${ORB_SYSPROPS_SOURCES} ${ORB_CONFIG_SOURCES} ${ORB_PLATFORM_SOURCES})
if(CMAKE_SYSTEM_NAME STREQUAL "Darwin")
  set(ORB_SOURCES ${ORB_COMMON_SOURCES} ${ORB_DARWIN_SOURCES})
else()
  set(ORB_SOURCES ${ORB_COMMON_SOURCES} ${ORB_LINUX_SOURCES})
endif()

# Headers that callers may include; everything exported is declared in one of them.
set(ORB_PUBLIC_HEADERS
  config/configkeys.h
  fileutil/conversions.h
  fileutil/dirent.h
  fileutil/filetree.h
  fileutil/guid.h
  fileutil/paths.h
  fileutil/platformmatch.h
  fileutil/timestamp.h
  fileutil/voxfio.h
  network/ipaddress.h
  network/ipv6.h
  network/netinterface.h
  network/networkutil.h
  platform/export.h
  portability/Linklist.h
  portability/dynlib.h
  portability/errorwords.h
  portability/filehandle.h
  portability/handles.h
  portability/selock.h
  portability/signals.h
  portability/threads.h
  session/loggedonusers.h
  sysprops/catalogue.h
  sysprops/collectors.h
  sysprops/records.h
)

# Those of them that serve C as well.
set(ORB_C_HEADERS
  fileutil/conversions.h
  fileutil/dirent.h
  fileutil/filetree.h
  fileutil/guid.h
  fileutil/paths.h
  fileutil/platformmatch.h
  fileutil/timestamp.h
  fileutil/voxfio.h
  platform/export.h
  portability/Linklist.h
  portability/dynlib.h
  portability/errorwords.h
  portability/filehandle.h
  portability/handles.h
  portability/selock.h
  portability/signals.h
  portability/threads.h
)

# The library's version, for the file that is made of it.
set(ORB_VERSION_SOURCE fileutil/softwareid.cpp)
set(ORB_VERSION_DEFINITIONS
  ORB_VERSION_MAJOR=${PROJECT_VERSION_MAJOR}
  ORB_VERSION_MINOR=${PROJECT_VERSION_MINOR}
  ORB_VERSION_PATCH=${PROJECT_VERSION_PATCH}
)
