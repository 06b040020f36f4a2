set(snap_trace_sources request fetch diagnostics failure_sweep)
list(TRANSFORM snap_trace_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/snap_)
list(TRANSFORM snap_trace_sources APPEND _test.cpp)
nvrhal_test(trace_snap ${snap_trace_sources} LIBS nvrhal_objects recording_platform LABEL trace TIMEOUT 300)
