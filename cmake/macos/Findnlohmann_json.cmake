# Findnlohmann_json.cmake: the JSON library of this machine, for the macOS cross build.
include(${CMAKE_CURRENT_LIST_DIR}/host_headers.cmake)
orb_host_headers(nlohmann_json nlohmann_json::nlohmann_json nlohmann/json.hpp)
