# The audio output: through the library on the virtual board, and by its own seam.
nvrhal_test(board_audio
  ${CMAKE_CURRENT_LIST_DIR}/audio_tone.cpp
  ${CMAKE_CURRENT_LIST_DIR}/audio_speaker.cpp
  ${CMAKE_CURRENT_LIST_DIR}/audio_library_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/audio_pace_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/audio_file_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/audio_seam_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/audio_control_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/audio_host_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/audio_thread_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/nvrec_run.cpp
  LIBS nvrhal board_rig vboard_host LABEL board TIMEOUT 120)
