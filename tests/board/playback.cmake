include_guard(GLOBAL)
# A recorder's session on the virtual board: cameras, recordings, playback.
include(${PROJECT_SOURCE_DIR}/tools/stamp/streams.cmake)
foreach(channel RANGE 3)
  math(EXPR recorded "${channel} + 20")
  stamped_stream(session_live_${channel}_h265 --codec h265 --size 640x360 --frames 30 --gop 10
    --channel ${channel} --preset ultrafast)
  stamped_stream(session_recording_${channel}_h265 --codec h265 --size 640x360 --frames 30 --gop 10
    --channel ${recorded} --first-frame 1000 --preset ultrafast)
endforeach()
stamped_stream(session_large_h265 --codec h265 --size 1920x1080 --frames 6 --gop 3 --channel 30 --preset ultrafast)

if(NOT TARGET board_session)
  nvrhal_test_library(board_session
    ${CMAKE_CURRENT_LIST_DIR}/playback_session.cpp ${CMAKE_CURRENT_LIST_DIR}/wall_session.cpp)
  target_include_directories(board_session PUBLIC ${CMAKE_CURRENT_LIST_DIR})
  target_link_libraries(board_session PUBLIC nvrhal board_rig)
endif()

nvrhal_test(board_playback
  ${CMAKE_CURRENT_LIST_DIR}/playback_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/playback_audio_test.cpp
  LIBS board_session board_speaker LABEL board TIMEOUT 120)
