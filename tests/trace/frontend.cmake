nvrhal_test(trace_frontend
  ${CMAKE_CURRENT_LIST_DIR}/frontend_chip_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/frontend_motion_test.cpp
  LIBS nvrhal_objects recording_gtest
  LABEL trace)
