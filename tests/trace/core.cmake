set(core_trace_sources
  device_init init_stages gui_init device_quit system_start display display_start display_ports hdmi decoder
  decoder_channel binding log failure_sweep)
list(TRANSFORM core_trace_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/core_)
list(TRANSFORM core_trace_sources APPEND _test.cpp)
nvrhal_test(trace_core ${core_trace_sources} LIBS nvrhal_objects recording_gtest LABEL trace TIMEOUT 300)
target_include_directories(trace_core PRIVATE ${PROJECT_SOURCE_DIR}/src)
