# Zoom, zoom layouts and the picture in picture on the virtual board. The session is playback.cmake's.
include(${CMAKE_CURRENT_LIST_DIR}/playback.cmake)
nvrhal_test(board_zoom
  ${CMAKE_CURRENT_LIST_DIR}/zoom_test.cpp
  LIBS board_session LABEL board TIMEOUT 120)
