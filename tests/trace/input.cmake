nvrhal_test(trace_input
  ${CMAKE_CURRENT_LIST_DIR}/input_keyboard_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/input_local_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/input_queue_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/input_remote_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/board_thread_refusal.cpp
  LIBS nvrhal_objects recording_gtest
  LABEL trace)
target_include_directories(trace_input PRIVATE ${PROJECT_SOURCE_DIR}/src)
target_link_options(trace_input PRIVATE
  -Wl,--wrap=pthread_create,--wrap=pthread_join,--wrap=pthread_attr_init,--wrap=pthread_attr_setscope
  -Wl,--wrap=pthread_attr_setdetachstate,--wrap=pthread_attr_destroy)
