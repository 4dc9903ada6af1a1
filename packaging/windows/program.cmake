# The properties of a program that Windows shows, and its manifest.
enable_language(RC)

# `icon` is the name of one in src/dialogs/widgets/icons.
function(quiverion_describe program program_description icon)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/windows/program.rc.in ${program}.rc @ONLY)
  set(rc ${CMAKE_CURRENT_BINARY_DIR}/${program}.rc)
  set_source_files_properties(${rc} PROPERTIES OBJECT_DEPENDS
    "${PROJECT_SOURCE_DIR}/src/dialogs/widgets/icons/${icon}.ico;${PROJECT_SOURCE_DIR}/packaging/windows/program.manifest")
  target_sources(${program} PRIVATE ${rc})
endfunction()
