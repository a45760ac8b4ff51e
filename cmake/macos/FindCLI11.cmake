# FindCLI11.cmake: the command-line library of this machine, for the macOS cross build.
include(${CMAKE_CURRENT_LIST_DIR}/host_headers.cmake)
orb_host_headers(CLI11 CLI11::CLI11 CLI/CLI.hpp)
