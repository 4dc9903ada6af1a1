# The command line.
if(NOT WIN32)
  find_package(CLI11 REQUIRED)
endif()
configure_file(version.h.in ${CMAKE_CURRENT_BINARY_DIR}/generated/version.h @ONLY)
quiverion_library(cli USES json SOURCES
  collection_commands.cpp export_command.cpp import_command.cpp info_command.cpp input_names.cpp list_command.cpp
  macro_commands.cpp run_command.cpp run_files.cpp statistics_command.cpp terminal.cpp)
add_executable(quiverionseries-cli cli/main.cpp)
target_include_directories(quiverionseries-cli PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/generated)
target_link_libraries(quiverionseries-cli PRIVATE quiverion_cli CLI11::CLI11)
if(WIN32)
  quiverion_describe(quiverionseries-cli "QuiverionSeries für die Befehlszeile" program)
endif()
