nvrhal_test(unit_core
  ${CMAKE_CURRENT_LIST_DIR}/core_log_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/core_timing_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/core_state_test.cpp
  LIBS nvrhal_objects recording_gtest
  LABEL unit)
