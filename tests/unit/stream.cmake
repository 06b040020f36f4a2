# The frame pools and the stream exchange.
set(stream_dir ${CMAKE_CURRENT_SOURCE_DIR})

nvrhal_test(stream_test
  ${stream_dir}/stream_pool_test.cpp
  ${stream_dir}/stream_bad_input_test.cpp
  ${stream_dir}/stream_reader_test.cpp
  ${stream_dir}/stream_block_jump_test.cpp
  ${stream_dir}/stream_block_test.cpp
  ${stream_dir}/stream_exchange_test.cpp
  LIBS nvrhal_objects recording_gtest LABEL unit TIMEOUT 30)
# Allocations go through the test, which makes them fail.
target_link_options(stream_test PRIVATE -Wl,--wrap=malloc -Wl,--wrap=calloc)

target_include_directories(stream_test PRIVATE ${stream_dir}/../../src)

# The pool's own sources, compiled once more over a header that reports every access to shared memory.
nvrhal_test(stream_interleaving_test OPTIMISED
  ${stream_dir}/stream_interleaving_test.cpp
  ${stream_dir}/stream_interleaving_probe.cpp
  ${stream_dir}/../../src/stream/pool.cpp
  ${stream_dir}/../../src/stream/distance.cpp
  ${stream_dir}/../../src/stream/reader.cpp
  ${stream_dir}/../../src/core/log.cpp
  LIBS nvrhal_api platform_api LABEL unit TIMEOUT 300)
target_include_directories(stream_interleaving_test BEFORE PRIVATE ${stream_dir}/stream_probe)
target_include_directories(stream_interleaving_test PRIVATE ${stream_dir}/../../src)

nvrhal_test(stream_model_test ${stream_dir}/stream_model_test.cpp ${stream_dir}/stream_model.cpp
  ${stream_dir}/stream_block_model_test.cpp
  LIBS nvrhal_objects recording_gtest LABEL unit TIMEOUT 300)
target_include_directories(stream_model_test PRIVATE ${stream_dir}/../../src)

nvrhal_test(stream_threads_test ${stream_dir}/stream_threads_test.cpp
  LIBS nvrhal_objects recording_gtest LABEL unit TIMEOUT 300)
target_include_directories(stream_threads_test PRIVATE ${stream_dir}/../../src)
