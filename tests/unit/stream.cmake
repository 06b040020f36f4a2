# The frame pools and the stream exchange.
set(stream_dir ${CMAKE_CURRENT_SOURCE_DIR})

nvrhal_test(stream_test
  ${stream_dir}/stream_pool_test.cpp
  ${stream_dir}/stream_bad_input_test.cpp
  ${stream_dir}/stream_reader_test.cpp
  ${stream_dir}/stream_block_test.cpp
  ${stream_dir}/stream_exchange_test.cpp
  LIBS nvrhal_objects recording_platform LABEL unit TIMEOUT 30)
# Allocations go through the test, which makes them fail.
target_link_options(stream_test PRIVATE -Wl,--wrap=malloc -Wl,--wrap=calloc)

target_include_directories(stream_test PRIVATE ${stream_dir}/../../src)
