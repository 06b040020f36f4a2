# The recorder's keys, mouse, indicators, supervision and control socket.
nvrhal_test(nvrec_controls_test
  ${CMAKE_CURRENT_SOURCE_DIR}/nvrec_control_socket_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/nvrec_controls_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/nvrec_run.cpp
  LIBS nvrec_pieces LABEL board TIMEOUT 60)

nvrhal_test(nvrec_keys_test
  ${CMAKE_CURRENT_SOURCE_DIR}/nvrec_keys_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/nvrec_run.cpp
  LABEL board TIMEOUT 120)
target_compile_definitions(nvrec_keys_test PRIVATE
  NVREC_CLIPS="${CMAKE_BINARY_DIR}/clips/nvrec" NVREC_PROGRAM="$<TARGET_FILE:nvrec>")
add_dependencies(nvrec_keys_test nvrec nvrec_clips)

# The window's events are put into SDL's own queue.
pkg_check_modules(NVREC_SDL2 REQUIRED IMPORTED_TARGET sdl2)
nvrhal_test(window_test ${CMAKE_CURRENT_SOURCE_DIR}/window_test.cpp
  LIBS vboard platform_api PkgConfig::NVREC_SDL2 LABEL board TIMEOUT 60)
