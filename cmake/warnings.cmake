# orb_warnings: an interface target with the warnings that every source of ours compiles under.
option(ORB_WERROR "Warnings are errors" ON)
add_library(orb_warnings INTERFACE)
target_compile_options(orb_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                       $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>
                       $<$<BOOL:${ORB_WERROR}>:-Werror>)
# GCC 12 sees an overlap in `"text" + string` where there is none once it inlines the library.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(orb_warnings INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
endif()
