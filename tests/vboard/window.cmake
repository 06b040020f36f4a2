# The window's events are put into SDL's own queue.
pkg_check_modules(WINDOW_SDL2 REQUIRED IMPORTED_TARGET sdl2)
nvrhal_test(window_test ${CMAKE_CURRENT_SOURCE_DIR}/window_test.cpp
  LIBS vboard platform_api PkgConfig::WINDOW_SDL2 LABEL vboard TIMEOUT 60)
# SDL2 asks for a macro that the precompiled headers are made without.
set_source_files_properties(${CMAKE_CURRENT_SOURCE_DIR}/window_test.cpp PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
