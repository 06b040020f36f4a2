nvrhal_test(trace_gui
  ${CMAKE_CURRENT_LIST_DIR}/gui_init_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui_init_failure_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui_surface_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui_draw_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui_log_test.cpp
  LIBS nvrhal_objects recording_gtest
  LABEL trace)
target_include_directories(trace_gui PRIVATE ${PROJECT_SOURCE_DIR}/tests/unit) # gui_bmp_file.h
