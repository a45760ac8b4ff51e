# What `cmake --install` lays down: the library, its headers under include/orbcommon with the
# spelling that they have here, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS orbcommon EXPORT orbcommon
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(header IN LISTS ORB_PUBLIC_HEADERS)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orbcommon/${folder})
endforeach()

install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/orbcommon)
install(EXPORT orbcommon NAMESPACE orbcommon:: FILE orbcommon-targets.cmake
        DESTINATION ${package_folder})
configure_package_config_file(cmake/orbcommon-config.cmake.in
                              ${PROJECT_BINARY_DIR}/orbcommon-config.cmake
                              INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orbcommon-config-version.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orbcommon-config.cmake
              ${PROJECT_BINARY_DIR}/orbcommon-config-version.cmake
        DESTINATION ${package_folder})

# By way from the file, so that the installed tree may be moved.
file(RELATIVE_PATH ORB_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/orbcommon.pc.in ${PROJECT_BINARY_DIR}/orbcommon.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orbcommon.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
