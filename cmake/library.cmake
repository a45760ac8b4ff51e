# The objects, compiled once; the shared library made of them; and a static library of the same
# objects that the tests link, so that they reach what is not exported.
include(cmake/exports.cmake)

add_library(orbcommon_objects OBJECT ${ORB_SOURCES})
target_include_directories(orbcommon_objects PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(orbcommon_objects PRIVATE orb_warnings orb_coverage)
set_target_properties(orbcommon_objects PROPERTIES
  POSITION_INDEPENDENT_CODE ON
  C_VISIBILITY_PRESET hidden
  CXX_VISIBILITY_PRESET hidden
  VISIBILITY_INLINES_HIDDEN ON)
# Loops over texts: at the ordinary level the compiler takes one element at a time.
set_source_files_properties(fileutil/strings.cpp fileutil/utf8.cpp fileutil/wildcard.cpp PROPERTIES
  COMPILE_OPTIONS "$<$<CONFIG:RelWithDebInfo>:-O3>")
set_source_files_properties(${ORB_VERSION_SOURCE} PROPERTIES
  COMPILE_DEFINITIONS "${ORB_VERSION_DEFINITIONS}")
target_compile_definitions(orbcommon_objects PRIVATE _FILE_OFFSET_BITS=64)

add_library(orbcommon SHARED $<TARGET_OBJECTS:orbcommon_objects>)
add_library(orbcommon::orbcommon ALIAS orbcommon)
target_include_directories(orbcommon PUBLIC
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/orbcommon>)
target_compile_features(orbcommon INTERFACE cxx_std_17)
# On macOS programs find it by their run path, wherever it is installed; the name is given here
# because a cross build has nothing that could change it at installation.
set_target_properties(orbcommon PROPERTIES VERSION ${PROJECT_VERSION}
                      SOVERSION ${PROJECT_VERSION_MAJOR}
                      INSTALL_NAME_DIR @rpath BUILD_WITH_INSTALL_NAME_DIR ON)
orb_limit_exports(orbcommon)

find_package(Threads REQUIRED)
set(ORB_SYSTEM_LIBRARIES Threads::Threads)
if(APPLE)
  list(APPEND ORB_SYSTEM_LIBRARIES "-framework CoreServices" "-framework CoreFoundation")
else()
  list(APPEND ORB_SYSTEM_LIBRARIES ${CMAKE_DL_LIBS})
  target_link_options(orbcommon PRIVATE LINKER:-z,now)  # with relro: no writable jump table
endif()
target_link_libraries(orbcommon PRIVATE ${ORB_SYSTEM_LIBRARIES})
target_link_options(orbcommon PRIVATE ${ORB_COVERAGE_LINK_OPTIONS})

add_library(orbcommon_static STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:orbcommon_objects>)
target_include_directories(orbcommon_static PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(orbcommon_static PUBLIC ${ORB_SYSTEM_LIBRARIES})
target_link_options(orbcommon_static PUBLIC ${ORB_COVERAGE_LINK_OPTIONS})
