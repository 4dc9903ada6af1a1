# Macros as JSON, for the command line and the clipboard of the desktop program.
if(NOT WIN32)
  find_package(nlohmann_json REQUIRED)
endif()
quiverion_library(json USES macro SOURCES
  macro_json.cpp)
target_link_libraries(quiverion_json PUBLIC nlohmann_json::nlohmann_json)
