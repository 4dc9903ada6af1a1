# The core: standard C++, no window. Each folder uses only folders listed above it.
quiverion_library(messages SOURCES
  failure.cpp system_error.cpp)
quiverion_library(platform USES messages SOURCES
  files/file_system.cpp files/overlay_files.cpp files/paths.cpp files/result_file.cpp
  files/write_retry.cpp
  numeric/float_errors.cpp
  text/decimal_digits.cpp text/decimal_value.cpp text/numbers.cpp text/text.cpp
  ${QUIVERION_SYSTEM}/clock.cpp ${QUIVERION_SYSTEM}/environment.cpp ${QUIVERION_SYSTEM}/file_system.cpp
  ${QUIVERION_SYSTEM}/paths.cpp)
if(WIN32)
  target_sources(quiverion_platform PRIVATE platform/windows/memory.cpp platform/windows/stack_guard.cpp)
endif()
quiverion_library(log USES platform SOURCES
  log_lines.cpp log_writers.cpp run_log.cpp)
quiverion_library(field USES log SOURCES
  frames.cpp vector_field.cpp
  formats/binary_reader.cpp formats/dat_fields.cpp formats/dat_file.cpp formats/dat_line.cpp
  formats/field_readers.cpp formats/load_original_file.cpp formats/vas_file.cpp formats/vec_file.cpp)
quiverion_library(operations USES field SOURCES
  commands/buffer_commands.cpp commands/filters.cpp commands/find_faulty_vectors.cpp
  commands/interpolate_invalid_vectors.cpp commands/transformations.cpp commands/view_settings.cpp
  commands/vortex_centres.cpp
  kernels/buffer_combination.cpp kernels/compare_local_mean.cpp kernels/compare_median_network.cpp
  kernels/compare_median_ranks.cpp kernels/compare_selection_sort.cpp kernels/derived_scalar.cpp
  kernels/faulty_vectors.cpp kernels/field_changes.cpp kernels/filter_kernel.cpp kernels/interpolation.cpp
  kernels/mathematical.cpp kernels/velocity_changes.cpp kernels/vortex_maxima.cpp)
quiverion_library(picture USES operations SOURCES
  arrows.cpp axes.cpp compose.cpp frame.cpp palette.cpp plot_items.cpp profile_picture.cpp
  quantities.cpp readout.cpp scales.cpp shown_field.cpp
  statuses.cpp svg.cpp wishes.cpp)
quiverion_library(export USES operations SOURCES
  table_writer.cpp text_exports.cpp)
quiverion_library(exchange USES field SOURCES
  build_fields.cpp columns.cpp export_files.cpp field_exports.cpp formats.cpp grid_points.cpp import_file.cpp inflate.cpp load_any_field.cpp mat_file.cpp netcdf_file.cpp
  read_davis_text.cpp read_mat.cpp read_netcdf.cpp read_number_lines.cpp read_pivlab_text.cpp read_tecplot.cpp
  read_vc7.cpp read_vtk.cpp statuses.cpp tecplot_header.cpp text_file.cpp text_table.cpp units.cpp
  write_matlab.cpp write_netcdf.cpp write_text.cpp write_vtk.cpp)
target_compile_definitions(quiverion_exchange PRIVATE QUIVERION_VERSION="${PROJECT_VERSION}")
target_link_libraries(quiverion_exchange PRIVATE ZLIB::ZLIB)
quiverion_library(statistics USES operations SOURCES
  collect.cpp collection_contents.cpp collection_file.cpp compute_statistic.cpp record_sums.cpp
  statistic_steps.cpp valid_bits.cpp)
quiverion_library(macro USES exchange export statistics SOURCES
  command_actions.cpp command_catalogue.cpp command_words.cpp directory_names.cpp file_steps.cpp macro_event.cpp
  macro_file.cpp plan_findings.cpp pre_run_checks.cpp result_names.cpp run_driver.cpp run_plan.cpp run_table.cpp
  run_table_text.cpp series_files.cpp)
quiverion_library(preview USES macro picture SOURCES
  buffer_use.cpp field_difference.cpp macro_preview.cpp search_report.cpp series_sample.cpp)
