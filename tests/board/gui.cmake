nvrhal_test(board_gui
  ${CMAKE_CURRENT_LIST_DIR}/gui_framebuffer_pixels_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui_framebuffer_test.cpp
  LIBS nvrhal vboard platform_api
  LABEL board)
