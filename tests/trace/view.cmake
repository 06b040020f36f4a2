set(view_trace_sources intake intake_backlog intake_filter intake_audio layout layout_flush layout_refusals
  layout_slave failure_sweep)
list(TRANSFORM view_trace_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/view_)
list(TRANSFORM view_trace_sources APPEND _test.cpp)
nvrhal_test(trace_view ${view_trace_sources} LIBS nvrhal_objects recording_gtest LABEL trace TIMEOUT 300)
target_include_directories(trace_view PRIVATE ${PROJECT_SOURCE_DIR}/src)
