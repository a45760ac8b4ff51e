# Run by cpack over what is staged: brings it into the form that Debian asks of a package: the
# manual page and a change log compressed, a statement of the copyright, its checker's exceptions.
set(documents ${CPACK_TEMPORARY_DIRECTORY}/usr/share/doc/orbcommon)
set(overrides ${CPACK_TEMPORARY_DIRECTORY}/usr/share/lintian/overrides)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)  # SOURCE_DATE_EPOCH's, when that is set
file(WRITE ${documents}/changelog
     "orbcommon (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium\n\n"
     "  * CHANGELOG.md beside this file tells the changes.\n\n"
     " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
execute_process(COMMAND gzip -9nf ${documents}/changelog
                        ${CPACK_TEMPORARY_DIRECTORY}/usr/share/man/man1/orbprops.1
                COMMAND_ERROR_IS_FATAL ANY)
file(COPY ${CMAKE_CURRENT_LIST_DIR}/copyright DESTINATION ${documents}
     FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
file(MAKE_DIRECTORY ${overrides})
file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/lintian-overrides ${overrides}/orbcommon)
file(CHMOD ${overrides}/orbcommon FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
