find_program(NVRHAL_ZBARIMG zbarimg REQUIRED)
nvrhal_test(unit_gui
  ${CMAKE_CURRENT_LIST_DIR}/gui_color_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui_paint_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui_bmp_load_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui_bmp_blocks_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui_bmp_refusal_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui_bmp_rows_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui_qr_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui_memory_test.cpp
  LIBS nvrhal_objects recording_gtest
  LABEL unit TIMEOUT 180)
target_compile_definitions(unit_gui PRIVATE NVRHAL_ZBARIMG="${NVRHAL_ZBARIMG}")
# Allocations and reads go through the tests, which make them fail or end early.
target_link_options(unit_gui PRIVATE -Wl,--wrap=malloc,--wrap=free,--wrap=readv,--wrap=QRcode_free)
