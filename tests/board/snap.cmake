# Snapshots, and the scaler and encoder under them, on the virtual board.
include(${CMAKE_CURRENT_LIST_DIR}/playback.cmake)
nvrhal_test(board_snap
  ${CMAKE_CURRENT_LIST_DIR}/snap_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/snap_scaler_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/snap_encoder_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/snap_pictures.cpp
  LIBS board_session LABEL board TIMEOUT 300)
