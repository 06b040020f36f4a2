# The examples against an installed nvrhal:
#
#   cmake -S share/nvrhal/examples -B build && cmake --build build
#
# Where the library leaves the chip's media interface to the application, as over the platform "linux", with
# -DADAPTER=/path/to/libyour_adapter.so: the library that brings it.
cmake_minimum_required(VERSION 3.25)
project(nvrhal_examples LANGUAGES C)

find_package(nvrhal 1.0 REQUIRED)
find_package(nvrhal-platform 1.0 REQUIRED)
find_package(Threads REQUIRED)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_EXTENSIONS OFF)

file(GLOB recorder_sources recorder/*.c)
set(ADAPTER "" CACHE STRING "Library that brings the chip's media interface, where nvrhal does not")
if(NVRHAL_OVER STREQUAL "virtual")
  find_package(vboard 1.0 REQUIRED)
  list(FILTER recorder_sources EXCLUDE REGEX "/(nodes|no_virtual_board)\\.c$")
  add_executable(minimal minimal.c)
  target_link_libraries(minimal PRIVATE nvrhal::nvrhal vboard::vboard)
  set(below vboard::vboard nvrhal::platform)
else()
  list(FILTER recorder_sources EXCLUDE REGEX "/virtual_board\\.c$")
  set(below ${ADAPTER})
endif()
add_executable(recorder ${recorder_sources})
target_compile_definitions(recorder PRIVATE _POSIX_C_SOURCE=200809L)
target_link_libraries(recorder PRIVATE nvrhal::nvrhal ${below} Threads::Threads)
