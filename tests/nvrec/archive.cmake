# The archive: the index of recordings, taking files in, retention, times of day, find, list, export.
set(nvrec_archive_clips ${PROJECT_BINARY_DIR}/clips/nvrec_archive)
add_custom_command(OUTPUT ${nvrec_archive_clips}/made
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/archive_clips.sh ${nvrec_archive_clips}
  COMMAND ${CMAKE_COMMAND} -E touch ${nvrec_archive_clips}/made
  DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/archive_clips.sh
  COMMENT "Encoding recordings for the archive's tests")
add_custom_target(nvrec_archive_clips DEPENDS ${nvrec_archive_clips}/made)

nvrhal_test(nvrec_archive_test
  ${CMAKE_CURRENT_SOURCE_DIR}/archive_in_memory_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/archive_index_faults_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/archive_index_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/archive_intake_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/archive_writer_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/time_line_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/time_of_day_test.cpp
  LIBS nvrec_run nvrec_pieces vboard LABEL nvrec TIMEOUT 60)
target_compile_definitions(nvrec_archive_test PRIVATE NVREC_CLIPS="${nvrec_archive_clips}")
add_dependencies(nvrec_archive_test nvrec_archive_clips)

nvrhal_test(nvrec_archive_command_test
  ${CMAKE_CURRENT_SOURCE_DIR}/archive_command_test.cpp
  LIBS nvrec_record_files nvrec_pieces vboard LABEL nvrec TIMEOUT 120)
target_compile_definitions(nvrec_archive_command_test PRIVATE
  NVREC_CLIPS="${nvrec_archive_clips}" NVREC_PROGRAM="$<TARGET_FILE:nvrec>")
add_dependencies(nvrec_archive_command_test nvrec nvrec_archive_clips)
