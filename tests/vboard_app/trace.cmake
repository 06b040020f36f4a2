# Call traces.
add_test(NAME Trace.FieldNamesAreThoseOfTheHeaders COMMAND ${PROJECT_SOURCE_DIR}/tools/call_fields.py --check)
set_tests_properties(Trace.FieldNamesAreThoseOfTheHeaders PROPERTIES LABELS vboard_app TIMEOUT 60)

nvrhal_test(vboard_app_trace
  ${CMAKE_CURRENT_LIST_DIR}/call_line_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/trace_diff_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/trace_reader_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/trace_timeline_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/trace_tracks_test.cpp
  LIBS vboard_trace
  LABEL vboard_app)
target_compile_definitions(vboard_app_trace PRIVATE PLATFORM_CALLS="${PROJECT_BINARY_DIR}/platform_calls.txt")

add_test(NAME Trace.ManualPageHasTheOptionsOfTheProgram
  COMMAND ${CMAKE_CURRENT_LIST_DIR}/trace_page.sh $<TARGET_FILE:vboard_program> ${PROJECT_SOURCE_DIR}/docs/man/vboard-trace.1)
set_tests_properties(Trace.ManualPageHasTheOptionsOfTheProgram PROPERTIES LABELS vboard_app TIMEOUT 60)
