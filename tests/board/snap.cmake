# Snapshots on the virtual board.
include(${CMAKE_CURRENT_LIST_DIR}/playback.cmake)
nvrhal_test(board_snap
  ${CMAKE_CURRENT_LIST_DIR}/snap_test.cpp
  LIBS board_session LABEL board TIMEOUT 300)
