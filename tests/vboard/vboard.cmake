# The board in software by itself, through its two faces.
include(${PROJECT_SOURCE_DIR}/tools/stamp/streams.cmake)
find_package(PkgConfig REQUIRED)
pkg_check_modules(RIG_FFMPEG REQUIRED IMPORTED_TARGET libavcodec libavutil)

stamped_stream(h264_640x360 --codec h264 --size 640x360 --frames 30 --channel 1)
stamped_stream(h265_640x360 --codec h265 --size 640x360 --frames 30 --channel 2 --preset ultrafast)
stamped_stream(h264_704x576 --codec h264 --size 704x576 --frames 12 --channel 3)
stamped_stream(h265_1280x720 --codec h265 --size 1280x720 --frames 12 --channel 4 --preset ultrafast)
stamped_stream(h264_1920x1080 --codec h264 --size 1920x1080 --frames 6 --channel 8 --gop 5)
stamped_stream(h264_bframes --codec h264 --size 640x360 --frames 24 --channel 5 --b-frames 2)
stamped_stream(h264_slices --codec h264 --size 640x360 --frames 30 --channel 6 --slices 4)
stamped_stream(jpeg_320x240 --codec jpeg --size 320x240 --frames 5 --channel 7)
# Streams whose pictures are decoded in another order than they are shown in, and some that are not.
set(reordered --codec h264 --size 320x180 --frames 60 --gop 20 --preset medium --channel 9)
stamped_stream(order_pyramid ${reordered} --b-frames 3 --params b-adapt=0:b-pyramid=normal)
stamped_stream(order_adaptive ${reordered} --b-frames 7 --params b-adapt=2:b-pyramid=normal)
stamped_stream(order_flat ${reordered} --b-frames 2 --params b-adapt=0:b-pyramid=none)
stamped_stream(order_open_gop ${reordered} --b-frames 3 --params b-adapt=0:b-pyramid=normal:open-gop=1)
stamped_stream(order_slices ${reordered} --slices 4 --b-frames 3 --params b-adapt=0:b-pyramid=strict)
stamped_stream(order_interlaced ${reordered} --b-frames 3 --params b-adapt=0:b-pyramid=normal:tff=1)
stamped_stream(order_none ${reordered})
stamped_stream(order_none_type_0 ${reordered} --params fake-interlaced=1)
stamped_stream(order_intra --codec h264 --size 320x180 --frames 20 --gop 1 --channel 9)
stamped_stream(order_h265_pyramid --codec h265 --size 320x180 --frames 60 --gop 20 --preset ultrafast --channel 9 --b-frames 4)
foreach(channel RANGE 15)
  math(EXPR odd "${channel} % 2")
  if(odd)
    stamped_stream(wall_${channel}_h265 --codec h265 --size 320x180 --frames 20 --channel ${channel} --preset ultrafast)
  else()
    stamped_stream(wall_${channel}_h264 --codec h264 --size 320x180 --frames 20 --channel ${channel})
  endif()
endforeach()

nvrhal_test_library(board_rig
  ${CMAKE_CURRENT_SOURCE_DIR}/board_rig.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/snap_pictures.cpp)
target_include_directories(board_rig PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_compile_definitions(board_rig PUBLIC STREAM_DIR="${STAMPED_STREAM_DIR}")
target_link_libraries(board_rig PUBLIC vboard platform_api stamp GTest::gtest
  PRIVATE vboard_host PkgConfig::RIG_FFMPEG)
add_dependencies(board_rig stamped_streams)

# Every call that the two seams declare, read from their headers.
file(GLOB seam_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/platform/include/mi_*.h)
set(platform_calls "")
foreach(header ${seam_headers} ${PROJECT_SOURCE_DIR}/platform/include/board_io.h)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
  file(STRINGS ${header} declarations REGEX "^[a-z][a-z0-9_]* \\*?(MI|board)_[A-Za-z_]+\\(")
  foreach(declaration ${declarations})
    string(REGEX REPLACE ".*[ *]((MI|board)_[A-Za-z_]+)\\(.*" "\\1" call "${declaration}")
    string(APPEND platform_calls "${call}\n")
  endforeach()
endforeach()
# The wall clock cannot fail.
string(REPLACE "board_time_us\n" "" platform_calls "${platform_calls}")
file(WRITE ${PROJECT_BINARY_DIR}/platform_calls.txt "${platform_calls}")

nvrhal_test(vboard_test
  ${CMAKE_CURRENT_SOURCE_DIR}/control_clock_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/control_display_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/control_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/damage_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/decoder_buffer_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/decoder_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/display_panes_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/display_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/graph_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/hdmi_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/misuse_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/order_rule_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/order_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/race_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/scaler_test.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/stamp_test.cpp
  LIBS board_rig vboard_host LABEL vboard TIMEOUT 300)
target_compile_definitions(vboard_test PRIVATE PLATFORM_CALLS="${PROJECT_BINARY_DIR}/platform_calls.txt")
