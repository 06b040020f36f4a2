nvrhal_test(trace_zoom
  ${CMAKE_CURRENT_LIST_DIR}/zoom_window_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/zoom_layout_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/pip_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/zoom_failure_sweep_test.cpp
  LIBS nvrhal_objects recording_gtest LABEL trace TIMEOUT 300)
target_include_directories(trace_zoom PRIVATE ${PROJECT_SOURCE_DIR}/src)
