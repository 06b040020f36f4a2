nvrhal_test(trace_board
  ${CMAKE_CURRENT_LIST_DIR}/board_formats_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/board_gpio_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/board_indicator_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/board_rtc_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/board_watchdog_feeder_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/board_watchdog_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/board_thread_refusal.cpp
  LIBS nvrhal_objects recording_gtest
  LABEL trace)
target_include_directories(trace_board PRIVATE ${PROJECT_SOURCE_DIR}/src)
target_link_options(trace_board PRIVATE
  -Wl,--wrap=pthread_create,--wrap=pthread_join,--wrap=pthread_attr_init,--wrap=pthread_attr_setscope
  -Wl,--wrap=pthread_attr_setdetachstate,--wrap=pthread_attr_destroy)
