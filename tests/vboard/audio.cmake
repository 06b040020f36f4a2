# The audio output by its own seam, its control face, and the host side under it.

# A tone sent through the library, and what the board's loudspeaker gave.
nvrhal_test_library(board_speaker
  ${CMAKE_CURRENT_LIST_DIR}/audio_speaker.cpp
  ${CMAKE_CURRENT_LIST_DIR}/audio_tone.cpp)
target_link_libraries(board_speaker PUBLIC nvrhal board_rig)

nvrhal_test(vboard_audio
  ${CMAKE_CURRENT_LIST_DIR}/audio_seam_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/audio_control_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/audio_host_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/audio_thread_test.cpp
  LIBS board_speaker vboard_host LABEL vboard TIMEOUT 120)
