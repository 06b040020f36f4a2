# The recorder's keys, mouse, indicators, supervision and control socket.
nvrhal_test(nvrec_controls_test
  ${CMAKE_CURRENT_SOURCE_DIR}/control_socket_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/controls_keys_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/controls_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/event_inputs_test.cpp
  LIBS nvrec_run nvrec_pieces vboard LABEL nvrec TIMEOUT 60)

nvrhal_test(nvrec_keys_test
  ${CMAKE_CURRENT_SOURCE_DIR}/keys_test.cpp
  LIBS nvrec_run LABEL nvrec TIMEOUT 120)
target_compile_definitions(nvrec_keys_test PRIVATE
  NVREC_CLIPS="${PROJECT_BINARY_DIR}/clips/nvrec" NVREC_PROGRAM="$<TARGET_FILE:nvrec>")
add_dependencies(nvrec_keys_test nvrec nvrec_clips)
