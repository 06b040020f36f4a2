# The audio output through the library on the virtual board.
nvrhal_test(board_audio
  ${CMAKE_CURRENT_LIST_DIR}/audio_library_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/audio_pace_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/audio_file_test.cpp
  LIBS board_speaker nvrec_run LABEL board TIMEOUT 120)
