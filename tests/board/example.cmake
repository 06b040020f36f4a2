# The README's example, run on one frame as a camera encodes it: nothing is reordered.
include(${PROJECT_SOURCE_DIR}/tools/stamp/streams.cmake)
stamped_stream(example_frame.h265 --codec h265 --frames 1 --channel 42 --first-frame 4711)
nvrhal_test(board_example ${CMAKE_CURRENT_LIST_DIR}/example_test.cpp LIBS stamp LABEL board)
target_compile_definitions(board_example PRIVATE
  EXAMPLE="$<TARGET_FILE:minimal>" EXAMPLE_FRAME="${STAMPED_STREAM_DIR}/example_frame.h265")
add_dependencies(board_example minimal stream_example_frame.h265)
