# host_headers.cmake: header-only libraries of this machine, for a build for another one.
#
# orb_host_headers(NAME TARGET HEADER): defines TARGET for the headers of the folder that HEADER
# ("CLI/CLI.hpp") lies in, and sets NAME_FOUND. Only that folder is seen, through a link in the
# build tree: beside it lie the headers of this machine's own system.
macro(orb_host_headers name target header)
  find_path(ORB_${name}_FOLDER ${header} PATHS /usr/local/include /usr/include
            NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(ORB_${name}_FOLDER)
    get_filename_component(orb_folder ${header} DIRECTORY)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/host_headers)
    file(CREATE_LINK ${ORB_${name}_FOLDER}/${orb_folder}
         ${PROJECT_BINARY_DIR}/host_headers/${orb_folder} SYMBOLIC)
    if(NOT TARGET ${target})
      add_library(${target} INTERFACE IMPORTED)
      target_include_directories(${target} SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/host_headers)
    endif()
    set(${name}_FOUND TRUE)
  endif()
endmacro()
