# The live wall through the library: stamps, layouts, the monitor, bad input, threads.
include(${CMAKE_CURRENT_LIST_DIR}/playback.cmake)
# Long enough that cameras run on through many changes of layout.
foreach(channel RANGE 3)
  math(EXPR odd "${channel} % 2")
  if(odd)
    stamped_stream(wall_run_${channel}_h265 --codec h265 --size 320x180 --frames 600 --gop 5 --channel ${channel} --preset ultrafast)
  else()
    stamped_stream(wall_run_${channel}_h264 --codec h264 --size 320x180 --frames 600 --gop 5 --channel ${channel} --preset ultrafast)
  endif()
endforeach()

nvrhal_test(board_wall
  ${CMAKE_CURRENT_LIST_DIR}/wall_stamp_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/wall_layout_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/wall_monitor_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/wall_damage_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/wall_bad_call_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/wall_leak_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/wall_quiet_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/wall_race_test.cpp
  LIBS board_session LABEL board TIMEOUT 300)
