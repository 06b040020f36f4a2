# The recorder's configuration, and the program run by one.
nvrhal_test(nvrec_config_test
  ${CMAKE_CURRENT_LIST_DIR}/config_secrets_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/config_test.cpp
  LIBS nvrec_run nvrec_pieces LABEL nvrec TIMEOUT 60)
target_compile_definitions(nvrec_config_test PRIVATE
  NVREC_PROGRAM="$<TARGET_FILE:nvrec>" NVREC_EXAMPLE="${PROJECT_SOURCE_DIR}/docs/nvrec.toml")
add_dependencies(nvrec_config_test nvrec)

nvrhal_test(nvrec_status_test
  ${CMAKE_CURRENT_LIST_DIR}/status_formats_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/status_test.cpp
  LIBS nvrec_run nvrec_pieces LABEL nvrec TIMEOUT 60)
target_compile_definitions(nvrec_status_test PRIVATE
  NVREC_PROGRAM="$<TARGET_FILE:nvrec>" NVREC_CLIP="${nvrec_clips}/h264.mp4" NVREC_VERSION="${PROJECT_VERSION}")
add_dependencies(nvrec_status_test nvrec nvrec_clips)

nvrhal_test(nvrec_lost_stream_test
  ${CMAKE_CURRENT_LIST_DIR}/lost_stream_test.cpp
  LIBS nvrec_run nvrec_pieces LABEL nvrec TIMEOUT 60)
target_compile_definitions(nvrec_lost_stream_test PRIVATE
  NVREC_PROGRAM="$<TARGET_FILE:nvrec>" NVREC_CLIP="${nvrec_clips}/h264.mp4")
add_dependencies(nvrec_lost_stream_test nvrec nvrec_clips)

nvrhal_test(nvrec_reload_test
  ${CMAKE_CURRENT_LIST_DIR}/free_channels_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/reload_test.cpp
  LIBS nvrec_record_files nvrec_pieces LABEL nvrec TIMEOUT 60)
target_compile_definitions(nvrec_reload_test PRIVATE
  NVREC_PROGRAM="$<TARGET_FILE:nvrec>" NVREC_CLIP="${nvrec_clips}/h264.mp4")
add_dependencies(nvrec_reload_test nvrec nvrec_clips)
if(TARGET nvrec_rtsp_camera)
  foreach(test nvrec_lost_stream_test nvrec_reload_test)
    target_compile_definitions(${test} PRIVATE NVREC_RTSP_CAMERA="$<TARGET_FILE:nvrec_rtsp_camera>")
    add_dependencies(${test} nvrec_rtsp_camera)
  endforeach()
endif()
