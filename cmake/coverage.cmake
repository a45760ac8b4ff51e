# orb_coverage: an interface target for the sources whose lines and branches are counted with
# ORB_COVERAGE: the library's, never those of the tests. Every program is linked with what writes
# the counts down when it ends.
add_library(orb_coverage INTERFACE)
if(ORB_COVERAGE)
  # Threads count together.
  target_compile_options(orb_coverage INTERFACE --coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
