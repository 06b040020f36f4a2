# The recorder's screen overlay: its pieces on the board, and the program's pictures.
pkg_check_modules(NVREC_FREETYPE REQUIRED IMPORTED_TARGET freetype2)

nvrhal_test(nvrec_overlay_test
  ${CMAKE_CURRENT_LIST_DIR}/overlay_states_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/overlay_test.cpp
  LIBS nvrec_run nvrec_pieces vboard PkgConfig::NVREC_FREETYPE LABEL nvrec TIMEOUT 120)

nvrhal_test(nvrec_overlay_wall_test
  ${CMAKE_CURRENT_LIST_DIR}/overlay_wall_test.cpp
  LIBS nvrec_run LABEL nvrec TIMEOUT 120)
target_compile_definitions(nvrec_overlay_wall_test PRIVATE
  NVREC_CLIPS="${PROJECT_BINARY_DIR}/clips/nvrec" NVREC_PROGRAM="$<TARGET_FILE:nvrec>")
add_dependencies(nvrec_overlay_wall_test nvrec nvrec_clips)
if(TARGET nvrec_rtsp_camera)
  target_compile_definitions(nvrec_overlay_wall_test PRIVATE
    NVREC_RTSP_CAMERA="$<TARGET_FILE:nvrec_rtsp_camera>")
  add_dependencies(nvrec_overlay_wall_test nvrec_rtsp_camera)
endif()
