# The board's card and its memory, without clock, lock or codec.
set(playout_dir ${PROJECT_SOURCE_DIR}/platform/virtual)
nvrhal_test(audio_playout_test
  ${CMAKE_CURRENT_LIST_DIR}/audio_playout_test.cpp
  ${playout_dir}/media/ao_playout.cpp
  ${playout_dir}/media/ao_history.cpp
  LABEL unit)
target_include_directories(audio_playout_test PRIVATE ${playout_dir})
