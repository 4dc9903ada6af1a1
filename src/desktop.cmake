# The desktop program.
if(WIN32)
  include(${PROJECT_SOURCE_DIR}/packaging/windows/runtime.cmake)
  quiverion_lay_out_runtime()
endif()

# A library with windows; its forms are next to the sources.
function(quiverion_windows name)
  quiverion_library(${name} ${ARGN})
  set_target_properties(quiverion_${name} PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON
    AUTORCC_OPTIONS --no-zstd)  # not every Qt can decompress that
  target_link_libraries(quiverion_${name} PUBLIC Qt6::Widgets)
endfunction()

# A program from <library>/main.cpp, with a description and an icon for Windows.
function(quiverion_window_program name library description icon)
  add_executable(${name} ${library}/main.cpp)
  target_link_libraries(${name} PRIVATE quiverion_${library})
  set_target_properties(${name} PROPERTIES WIN32_EXECUTABLE TRUE QUIVERION_WINDOWS TRUE)
  if(WIN32)
    quiverion_describe(${name} "${description}" ${icon})
  endif()
endfunction()

quiverion_windows(dialogs USES macro SOURCES
  application.cpp frmRunPlan.cpp frmRunTable.cpp frmShowCollection.cpp frmShowLogFile.cpp frmShowProgress.cpp log_text.cpp
  macro_editing.cpp macro_history.cpp repaint_throttle.cpp run_plan_model.cpp run_table_model.cpp
  exchange/background_tasks.cpp exchange/export_list.cpp exchange/frmExport.cpp exchange/frmImport.cpp
  exchange/import_choices.cpp exchange/import_list.cpp exchange/import_work.cpp
  help/frmHelp.cpp help/help.cpp help/help_browser.cpp help/help_pages.cpp
  parameters/fault_vector_rules.cpp parameters/file_choices.cpp parameters/frmChooseMacroEvent.cpp
  parameters/frmEditVector.cpp parameters/frmFaultVectors.cpp
  parameters/frmMirrorOptions.cpp parameters/frmPrefixPostfix.cpp parameters/frmXYTrafo.cpp
  parameters/parameter_editing.cpp parameters/parameter_window.cpp parameters/parameter_windows.cpp
  widgets/elided_label.cpp widgets/filtered_line_edit.cpp widgets/find_bar.cpp
  widgets/guarded.cpp widgets/icons.cpp
  widgets/key_filter.cpp widgets/message_box.cpp widgets/severity_colours.cpp widgets/table_text.cpp widgets/time_text.cpp widgets/wrapped_label.cpp
  ${QUIVERION_SYSTEM}/native.cpp ${QUIVERION_SYSTEM}/qt_paths.cpp)
target_sources(quiverion_dialogs PRIVATE dialogs/widgets/icons.qrc)
target_link_libraries(quiverion_dialogs PUBLIC Qt6::PrintSupport)
quiverion_windows(view USES picture preview dialogs SOURCES
  asked_numbers.cpp field_series.cpp field_view.cpp frmView.cpp picture_files.cpp picture_output.cpp
  picture_painter.cpp profile_view.cpp scale_sampler.cpp vector_table.cpp
  preview/comparison_view.cpp preview/frmPreview.cpp preview/histogram_view.cpp
  preview/preview_worker.cpp preview/sample_strip.cpp preview/step_table.cpp)
quiverion_windows(app USES view json SOURCES
  directory_list.cpp exchange_windows.cpp file_list.cpp file_panel.cpp forecast_button.cpp frmMain.cpp
  frmOpenDirectory.cpp last_run.cpp macro_panel.cpp
  navigation.cpp newest_task.cpp qt_user_interface.cpp run_forecast.cpp
  statistics_flow.cpp tool_windows.cpp
  ${QUIVERION_SYSTEM}/drives.cpp)
quiverion_window_program(QuiverionSeries app "${PROJECT_DESCRIPTION}" program)

# The viewer: a window, or pictures without one.
if(QUIVERION_CLI)
  quiverion_windows(viewer USES view cli SOURCES
    arguments.cpp picture_command.cpp)
  target_include_directories(quiverion_viewer PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/generated)
  if(NOT WIN32)
    target_link_libraries(quiverion_viewer PRIVATE CLI11::CLI11)
  endif()
  quiverion_window_program(QuiverionView viewer "Vektorfelder ansehen" viewer)
endif()
