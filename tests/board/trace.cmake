# Traces of the board under the library.
include(${CMAKE_CURRENT_LIST_DIR}/playback.cmake)
add_executable(trace_program ${CMAKE_CURRENT_LIST_DIR}/trace_program.cpp)
target_precompile_headers(trace_program REUSE_FROM test_headers)
target_link_libraries(trace_program PRIVATE board_session)
nvrhal_test(board_trace ${CMAKE_CURRENT_LIST_DIR}/trace_repeat_test.cpp LABEL board)
target_compile_definitions(board_trace PRIVATE TRACE_PROGRAM="$<TARGET_FILE:trace_program>")
add_dependencies(board_trace trace_program)
