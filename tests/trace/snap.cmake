set(snap_trace_sources request fetch diagnostics failure_sweep)
list(TRANSFORM snap_trace_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/snap_)
list(TRANSFORM snap_trace_sources APPEND _test.cpp)
list(APPEND snap_trace_sources ${CMAKE_CURRENT_LIST_DIR}/snap_refusal.cpp)
nvrhal_test(trace_snap ${snap_trace_sources} LIBS nvrhal_objects recording_gtest LABEL trace TIMEOUT 300)
target_link_options(trace_snap PRIVATE -Wl,--wrap=malloc,--wrap=free
  -Wl,--wrap=pthread_create,--wrap=pthread_join)
