# The recording platform itself, and a program that uses it without a test framework.
nvrhal_test(trace_recorder
  ${CMAKE_CURRENT_LIST_DIR}/recorder_test.cpp
  LIBS nvrhal_objects recording_gtest
  LABEL trace)

add_executable(plain_recorder ${CMAKE_CURRENT_LIST_DIR}/plain_recorder.cpp)
target_link_libraries(plain_recorder PRIVATE nvrhal_objects recording_platform)
add_test(NAME PlainRecorder.NeedsNoTestFramework COMMAND plain_recorder)
set_tests_properties(PlainRecorder.NeedsNoTestFramework PROPERTIES TIMEOUT 60 LABELS trace)
