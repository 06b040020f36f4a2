# The recorder: its pieces, and the program on files and on a network camera.
find_package(PkgConfig REQUIRED)

set(nvrec_clips ${PROJECT_BINARY_DIR}/clips/nvrec)
add_custom_command(OUTPUT ${nvrec_clips}/made
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/clips.sh ${nvrec_clips}
  COMMAND ${CMAKE_COMMAND} -E touch ${nvrec_clips}/made
  DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/clips.sh
  COMMENT "Encoding clips for the recorder's tests")
add_custom_target(nvrec_clips DEPENDS ${nvrec_clips}/made)

nvrhal_test(nvrec_pieces_test
  ${CMAKE_CURRENT_SOURCE_DIR}/address_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/camera_meter_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/decoder_watch_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/feeder_faults_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/feeder_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/input_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/layout_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/live_clock_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/module_list_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/report_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/unit_clock_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/waiting_sound_test.cpp
  LIBS nvrec_run nvrec_pieces LABEL nvrec TIMEOUT 60)
target_compile_definitions(nvrec_pieces_test PRIVATE NVREC_CLIPS="${nvrec_clips}")
add_dependencies(nvrec_pieces_test nvrec_clips)

nvrhal_test(nvrec_wall_test
  ${CMAKE_CURRENT_SOURCE_DIR}/wall_network_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/wall_test.cpp
  LIBS nvrec_run nvrhal_api LABEL nvrec TIMEOUT 120)
target_compile_definitions(nvrec_wall_test PRIVATE
  NVREC_CLIPS="${nvrec_clips}" NVREC_PROGRAM="$<TARGET_FILE:nvrec>")
add_dependencies(nvrec_wall_test nvrec nvrec_clips)

pkg_check_modules(NVREC_RTSP IMPORTED_TARGET gstreamer-rtsp-server-1.0)
if(NVREC_RTSP_FOUND)
  add_executable(nvrec_rtsp_camera ${PROJECT_SOURCE_DIR}/tools/rtsp_camera.c)
  target_link_libraries(nvrec_rtsp_camera PRIVATE PkgConfig::NVREC_RTSP)
  # The other end of the connection is not under test, and its libraries are not built for sanitizers.
  target_compile_options(nvrec_rtsp_camera PRIVATE -fno-sanitize=all)
  target_link_options(nvrec_rtsp_camera PRIVATE -fno-sanitize=all)
  foreach(test nvrec_pieces_test nvrec_wall_test)
    target_compile_definitions(${test} PRIVATE NVREC_RTSP_CAMERA="$<TARGET_FILE:nvrec_rtsp_camera>")
    add_dependencies(${test} nvrec_rtsp_camera)
  endforeach()
endif()
