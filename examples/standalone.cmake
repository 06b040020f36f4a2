# The examples against an installed nvrhal:
#
#   cmake -S share/nvrhal/examples -B build && cmake --build build
#
# Over the board in software as it is. For a real board, with -DADAPTER=/path/to/libyour_adapter.so: the
# library that brings the chip's media interface.
cmake_minimum_required(VERSION 3.25)
project(nvrhal_examples LANGUAGES C)

find_package(nvrhal 1.0 REQUIRED)
find_package(nvrhal-platform 1.0 REQUIRED)
find_package(Threads REQUIRED)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_EXTENSIONS OFF)

file(GLOB recorder_sources recorder/*.c)
set(ADAPTER "" CACHE STRING "Library that brings the chip's media interface; empty: the board in software")
if(ADAPTER)
  list(FILTER recorder_sources EXCLUDE REGEX "/virtual_board\\.c$")
  add_executable(recorder ${recorder_sources})
  target_link_libraries(recorder PRIVATE ${ADAPTER})
else()
  find_package(vboard 1.0 REQUIRED)
  list(FILTER recorder_sources EXCLUDE REGEX "/(nodes|no_virtual_board)\\.c$")
  add_executable(recorder ${recorder_sources})
  target_link_libraries(recorder PRIVATE vboard::vboard nvrhal::platform)
  add_executable(minimal minimal.c)
  target_link_libraries(minimal PRIVATE nvrhal::nvrhal vboard::vboard)
endif()
target_compile_definitions(recorder PRIVATE _POSIX_C_SOURCE=200809L)
target_link_libraries(recorder PRIVATE nvrhal::nvrhal Threads::Threads)
