set(playback_trace_sources switch drain buffer failure_sweep)
list(TRANSFORM playback_trace_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/playback_)
list(TRANSFORM playback_trace_sources APPEND _test.cpp)
nvrhal_test(trace_playback ${playback_trace_sources} LIBS nvrhal_objects recording_platform LABEL trace TIMEOUT 300)
