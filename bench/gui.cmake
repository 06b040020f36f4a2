# The GUI surface beside memset, pixman, SDL2 and the qrencode tool.
find_package(PkgConfig REQUIRED)
pkg_check_modules(BENCH_GUI_PIXMAN REQUIRED IMPORTED_TARGET pixman-1)
pkg_check_modules(BENCH_GUI_SDL2 REQUIRED IMPORTED_TARGET sdl2)
add_executable(bench_gui
  ${CMAKE_CURRENT_LIST_DIR}/gui/main.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui/fill.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui/bitmap.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gui/qr_code.cpp
  ${CMAKE_CURRENT_LIST_DIR}/intake/idle_platform.cpp)
target_link_libraries(bench_gui PRIVATE nvrhal_objects bench_build_kind PkgConfig::BENCH_GUI_PIXMAN PkgConfig::BENCH_GUI_SDL2)
