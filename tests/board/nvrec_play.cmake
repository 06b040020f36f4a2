# Playback, snapshots and zoom in the recorder, on the clips that nvrec.cmake makes.

nvrhal_test(nvrec_play_seek_test
  ${CMAKE_CURRENT_LIST_DIR}/nvrec_play_seek_test.cpp
  LIBS nvrec_pieces LABEL board TIMEOUT 60)
target_compile_definitions(nvrec_play_seek_test PRIVATE NVREC_CLIPS="${nvrec_clips}")
add_dependencies(nvrec_play_seek_test nvrec_clips)
