# The recorder: cameras into files, by the program and piece by piece.
set(nvrec_record_clips ${PROJECT_BINARY_DIR}/clips/nvrec_record)
add_custom_command(OUTPUT ${nvrec_record_clips}/made
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/record_clips.sh ${nvrec_record_clips}
  COMMAND ${CMAKE_COMMAND} -E touch ${nvrec_record_clips}/made
  DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/record_clips.sh
  COMMENT "Encoding cameras for the recorder's tests")
add_custom_target(nvrec_record_clips DEPENDS ${nvrec_record_clips}/made)

nvrhal_test_library(nvrec_record_files ${CMAKE_CURRENT_SOURCE_DIR}/record_files.cpp)
target_link_libraries(nvrec_record_files PUBLIC nvrec_run)

nvrhal_test(nvrec_record_pieces_test
  ${CMAKE_CURRENT_SOURCE_DIR}/record_pieces_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/record_retry_test.cpp
  LIBS nvrec_record_files nvrec_pieces vboard LABEL nvrec TIMEOUT 60)
target_compile_definitions(nvrec_record_pieces_test PRIVATE NVREC_CLIPS="${nvrec_record_clips}")
add_dependencies(nvrec_record_pieces_test nvrec_record_clips)

nvrhal_test(nvrec_record_disk_test
  ${CMAKE_CURRENT_SOURCE_DIR}/record_container_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/record_disk_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/record_event_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/record_hanging_disk_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/record_plan_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/record_room_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/record_sync_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/recorder_log_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/recorder_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/service_unit_test.cpp
  LIBS nvrec_record_files nvrec_pieces vboard LABEL nvrec TIMEOUT 60)
target_compile_definitions(nvrec_record_disk_test PRIVATE NVREC_CLIPS="${nvrec_record_clips}"
  NVREC_SERVICE_UNIT="${PROJECT_SOURCE_DIR}/apps/nvrec/service/nvrec.service.in")
add_dependencies(nvrec_record_disk_test nvrec_record_clips)

nvrhal_test(nvrec_record_gap_test
  ${CMAKE_CURRENT_SOURCE_DIR}/record_gap_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/record_gap_units_test.cpp
  LIBS nvrec_record_files nvrec_pieces vboard LABEL nvrec TIMEOUT 60)
target_compile_definitions(nvrec_record_gap_test PRIVATE NVREC_CLIPS="${nvrec_record_clips}")
add_dependencies(nvrec_record_gap_test nvrec_record_clips)

nvrhal_test(nvrec_record_test
  ${CMAKE_CURRENT_SOURCE_DIR}/record_faults_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/record_test.cpp
  LIBS nvrec_record_files LABEL nvrec TIMEOUT 180)
target_compile_definitions(nvrec_record_test PRIVATE
  NVREC_CLIPS="${nvrec_record_clips}" NVREC_PROGRAM="$<TARGET_FILE:nvrec>")
add_dependencies(nvrec_record_test nvrec nvrec_record_clips)
if(TARGET nvrec_rtsp_camera)
  target_compile_definitions(nvrec_record_test PRIVATE NVREC_RTSP_CAMERA="$<TARGET_FILE:nvrec_rtsp_camera>")
  add_dependencies(nvrec_record_test nvrec_rtsp_camera)
endif()

nvrhal_test(nvrec_listen_test
  ${CMAKE_CURRENT_SOURCE_DIR}/listen_test.cpp
  LIBS nvrec_run LABEL nvrec TIMEOUT 120)
target_compile_definitions(nvrec_listen_test PRIVATE
  NVREC_CLIPS="${nvrec_record_clips}" NVREC_PROGRAM="$<TARGET_FILE:nvrec>")
add_dependencies(nvrec_listen_test nvrec nvrec_record_clips)
