# The library's output switch on the virtual board.
include(${CMAKE_CURRENT_LIST_DIR}/playback.cmake)

nvrhal_test(board_output
  ${CMAKE_CURRENT_LIST_DIR}/output_switch_test.cpp
  LIBS board_session LABEL board TIMEOUT 120)
