# The Debian package that `./dev package` makes: the library, its headers, the tool.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orbcommon)
set(CPACK_PACKAGE_VENDOR "The orbcommon developers")
set(CPACK_PACKAGE_CONTACT "The orbcommon developers <orbcommon@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
    "A shared library with the machine's property report, network interfaces and
addresses, logged-on users, text conversions, and Windows-style handles,
threads, locks and files over POSIX; its headers, and the report tool orbprops.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)  # depends on what the files are linked with
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)  # what others that link the library depend on
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/staged.cmake)
include(CPack)
