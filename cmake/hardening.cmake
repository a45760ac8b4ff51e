# Options that turn memory errors into an immediate stop: the optimised builds carry them, the
# sanitizers' builds have better ones of their own. `./dev check hardening` looks for them in the
# built library.
include(CheckCXXCompilerFlag)

if(NOT APPLE AND NOT ORB_SANITIZE)
  foreach(flag -fstack-protector-strong -fstack-clash-protection)
    string(MAKE_C_IDENTIFIER "ORB_HAS${flag}" known)
    check_cxx_compiler_flag(${flag} ${known})
    if(${known})
      add_compile_options(${flag})
    endif()
  endforeach()
  add_compile_options($<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE>
                      $<$<CONFIG:Release,RelWithDebInfo>:-D_FORTIFY_SOURCE=3>)
  add_link_options(LINKER:-z,relro LINKER:-z,noexecstack)
endif()
