nvrhal_test(trace_output
  ${CMAKE_CURRENT_LIST_DIR}/output_channels_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/output_device_test.cpp
  LIBS nvrhal_objects recording_gtest
  LABEL trace)
