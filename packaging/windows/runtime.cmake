# The runtime files that the desktop program needs in its directory on Windows. Include this after find_package(Qt6).
#
# quiverion_runtime_files(<libraries> <plugins>) sets both variables. The libraries belong in the directory of the
# program, and each plugin (platforms/qwindows.dll, below QUIVERION_QT_PLUGINS) in a folder of that name there.
# quiverion_lay_out_runtime() copies all of them, and the files that only tests need, to the build directory of the
# programs.
get_filename_component(quiverion_qt "${Qt6_DIR}/../../.." ABSOLUTE)
set(QUIVERION_QT_PLUGINS ${quiverion_qt}/plugins)
# The German texts of Qt, in "translations" in the directory of the program.
set(QUIVERION_QT_TEXTS /usr/share/qt6/translations/qtbase_de.qm)

function(quiverion_runtime_files libraries plugins)
  foreach(name Core Gui Widgets PrintSupport)
    list(APPEND found ${quiverion_qt}/bin/Qt6${name}.dll)
  endforeach()
  # The runtime libraries of the compiler, which the program shares with Qt.
  foreach(name libgcc_s_seh-1 libssp-0 libstdc++-6 libwinpthread-1)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}.dll OUTPUT_VARIABLE file
      OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    get_filename_component(file "${file}" ABSOLUTE)
    list(APPEND found ${file})
  endforeach()
  foreach(file ${found})
    if(NOT EXISTS ${file})
      message(FATAL_ERROR "${file} is missing.")
    endif()
  endforeach()
  set(${libraries} ${found} PARENT_SCOPE)
  set(${plugins} platforms/qwindows.dll styles/qwindowsvistastyle.dll imageformats/qico.dll PARENT_SCOPE)
endfunction()

function(quiverion_lay_out_runtime)
  quiverion_runtime_files(libraries plugins)
  if(QUIVERION_TESTS)
    list(APPEND libraries ${quiverion_qt}/bin/Qt6Test.dll)
    list(APPEND plugins platforms/qoffscreen.dll)
    # Without a display, only these fonts are available.
    file(COPY /usr/share/fonts/truetype/dejavu/DejaVuSans.ttf /usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf
      DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/lib/fonts)
  endif()
  file(COPY ${QUIVERION_QT_TEXTS} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/translations)
  file(COPY ${libraries} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  foreach(plugin ${plugins})
    get_filename_component(folder ${plugin} DIRECTORY)
    file(COPY ${QUIVERION_QT_PLUGINS}/${plugin} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${folder})
  endforeach()
endfunction()
