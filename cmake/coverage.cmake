# orb_coverage: an interface target for the sources whose lines and branches are counted with
# ORB_COVERAGE, by clang: the library's, never those of the tests. What is linked of their objects
# takes its link options too.
add_library(orb_coverage INTERFACE)
if(ORB_COVERAGE)
  # Threads count together, in files that are mapped into memory: a process counts to its end,
  # however it ends, and its children count with it.
  target_compile_options(orb_coverage INTERFACE
    -fprofile-instr-generate=${PROJECT_BINARY_DIR}/counts/%m%c.profraw -fcoverage-mapping
    -fprofile-update=atomic -mllvm -runtime-counter-relocation)
  target_link_options(orb_coverage INTERFACE -fprofile-instr-generate)
endif()
set(ORB_COVERAGE_LINK_OPTIONS $<TARGET_PROPERTY:orb_coverage,INTERFACE_LINK_OPTIONS>)
