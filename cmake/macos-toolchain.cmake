# macos-toolchain.cmake: builds for macOS on a Linux machine, for ORB_MACOS_ARCH aarch64 or x86_64.
#
# The compiler brings the C library's headers and link stub of macOS; the two frameworks that the
# library asks are declared in the folder beside this file. A build on a Mac needs none of it.
set(CMAKE_SYSTEM_NAME Darwin)
set(ORB_MACOS_ARCH aarch64 CACHE STRING "Architecture of the macOS build: aarch64 or x86_64")
set(CMAKE_SYSTEM_PROCESSOR ${ORB_MACOS_ARCH})
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORB_MACOS_ARCH)

execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../scripts/macos_toolchain.sh
                OUTPUT_VARIABLE orb_macos_tools OUTPUT_STRIP_TRAILING_WHITESPACE
                COMMAND_ERROR_IS_FATAL ANY)
set(CMAKE_C_COMPILER ${orb_macos_tools}/zig-cc)
set(CMAKE_CXX_COMPILER ${orb_macos_tools}/zig-c++)
set(CMAKE_AR ${orb_macos_tools}/zig-ar CACHE FILEPATH "")
set(CMAKE_RANLIB ${orb_macos_tools}/zig-ranlib CACHE FILEPATH "")
set(CMAKE_INSTALL_NAME_TOOL true CACHE FILEPATH "")

# The oldest system that both architectures have. The compiler would otherwise add the checks of
# undefined behaviour, and debug records, of its own accord.
set(orb_macos_flags "-target ${ORB_MACOS_ARCH}-macos.11.0 -fno-sanitize=undefined -g0")
string(APPEND orb_macos_flags " -F${CMAKE_CURRENT_LIST_DIR}/macos/frameworks")
set(CMAKE_C_FLAGS_INIT "${orb_macos_flags}")
set(CMAKE_CXX_FLAGS_INIT "${orb_macos_flags}")

# The target is named above, not by an SDK.
set(CMAKE_OSX_SYSROOT "" CACHE STRING "")
set(CMAKE_OSX_DEPLOYMENT_TARGET "" CACHE STRING "")
set(CMAKE_OSX_ARCHITECTURES "" CACHE STRING "")

# Nothing of this machine serves the target.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# But for header-only libraries, each found by a module of this folder.
list(APPEND CMAKE_MODULE_PATH ${CMAKE_CURRENT_LIST_DIR}/macos)
