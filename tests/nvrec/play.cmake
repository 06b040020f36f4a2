# Playback, snapshots and zoom in the recorder, on the clips that wall.cmake makes.

nvrhal_test(nvrec_play_seek_test
  ${CMAKE_CURRENT_LIST_DIR}/line_drag_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/play_seek_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/playback_track_test.cpp
  LIBS nvrec_run nvrec_pieces LABEL nvrec TIMEOUT 60)
target_compile_definitions(nvrec_play_seek_test PRIVATE NVREC_CLIPS="${nvrec_clips}")
add_dependencies(nvrec_play_seek_test nvrec_clips)

# Recordings of five seconds with a key frame a second, and cameras to come back to.
include(${PROJECT_SOURCE_DIR}/tools/stamp/streams.cmake)
set(play_stream --size 640x360 --fps 25 --preset ultrafast)
stamped_stream(play_0.h264 --codec h264 --frames 125 --gop 25 --channel 20 ${play_stream})
stamped_stream(play_1.h265 --codec h265 --frames 125 --gop 25 --channel 21 ${play_stream})
stamped_stream(play_camera_0.h265 --codec h265 --frames 40 --gop 10 --channel 1 ${play_stream})
stamped_stream(play_camera_1.h264 --codec h264 --frames 40 --gop 10 --channel 2 ${play_stream})

# The same in a container, with pictures that are shown in another order than they are decoded.
set(play_reordered ${STAMPED_STREAM_DIR}/play_reordered.mp4)
add_custom_command(OUTPUT ${play_reordered}
  COMMAND ffmpeg -nostdin -v error -y -r 25 -i ${STAMPED_STREAM_DIR}/play_0.h264
    -c:v libx264 -preset veryfast -bf 3 -g 25 -keyint_min 25 -sc_threshold 0 -pix_fmt yuv420p
    -movflags frag_keyframe+empty_moov+default_base_moof ${play_reordered}
  DEPENDS stream_play_0.h264
  COMMENT "Encoding a recording with reordered pictures"
  VERBATIM)
add_custom_target(nvrec_play_reordered DEPENDS ${play_reordered})

# A recording of another codec.
set(play_h265 ${STAMPED_STREAM_DIR}/play_h265.mp4)
add_custom_command(OUTPUT ${play_h265}
  COMMAND ffmpeg -nostdin -v error -y -r 25 -i ${STAMPED_STREAM_DIR}/play_1.h265
    -c:v libx265 -preset ultrafast -x265-params log-level=error:keyint=25:min-keyint=25:scenecut=0:bframes=0
    -pix_fmt yuv420p -movflags frag_keyframe+empty_moov+default_base_moof ${play_h265}
  DEPENDS stream_play_1.h265
  COMMENT "Encoding a recording of another codec"
  VERBATIM)
add_custom_target(nvrec_play_h265 DEPENDS ${play_h265})

set(play_archive_test_more ${CMAKE_CURRENT_LIST_DIR}/play_days_test.cpp)
foreach(name play_test play_archive_test snapshot_test zoom_test)
  nvrhal_test(nvrec_${name}
    ${CMAKE_CURRENT_LIST_DIR}/${name}.cpp ${${name}_more}
    LIBS nvrec_run nvrhal_api stamp LABEL nvrec TIMEOUT 120)
  target_compile_definitions(nvrec_${name} PRIVATE
    NVREC_STREAMS="${STAMPED_STREAM_DIR}" NVREC_PROGRAM="$<TARGET_FILE:nvrec>")
  add_dependencies(nvrec_${name} nvrec stream_play_0.h264 stream_play_1.h265 stream_play_camera_0.h265
    stream_play_camera_1.h264)
endforeach()
add_dependencies(nvrec_play_archive_test nvrec_play_reordered nvrec_play_h265)
# The zoom's arithmetic, too.
target_link_libraries(nvrec_zoom_test PRIVATE nvrec_pieces)

set(play_sound ${STAMPED_STREAM_DIR}/play_sound.mp4)
add_custom_command(OUTPUT ${play_sound}
  COMMAND ffmpeg -nostdin -v error -y -r 25 -i ${STAMPED_STREAM_DIR}/play_0.h264
    -f lavfi -i sine=frequency=440:duration=5 -c:v copy -c:a aac ${play_sound}
  DEPENDS stream_play_0.h264
  COMMENT "Giving a recording sound"
  VERBATIM)
add_custom_target(nvrec_play_sound DEPENDS ${play_sound})

nvrhal_test(nvrec_playback_test
  ${CMAKE_CURRENT_LIST_DIR}/playback_test.cpp
  LIBS nvrec_run nvrec_pieces board_session LABEL nvrec TIMEOUT 120)
target_compile_definitions(nvrec_playback_test PRIVATE NVREC_STREAMS="${STAMPED_STREAM_DIR}")
add_dependencies(nvrec_playback_test nvrec_play_sound stream_play_1.h265)
add_dependencies(nvrec_play_test nvrec_play_sound)

# The wall in one process with the test, which moves the mouse, follows the screen and steps the clock.
nvrhal_test(nvrec_running_wall_test
  ${CMAKE_CURRENT_LIST_DIR}/mouse_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/play_line_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/play_loop_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/play_snapshot_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/single_views_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/stepped_wall_test.cpp
  LIBS nvrec_run nvrec_pieces vboard stamp LABEL nvrec TIMEOUT 120)
target_compile_definitions(nvrec_running_wall_test PRIVATE NVREC_STREAMS="${STAMPED_STREAM_DIR}"
  NVREC_CLIPS="${nvrec_clips}")
add_dependencies(nvrec_running_wall_test nvrec_clips nvrec_play_reordered stream_play_0.h264 stream_play_1.h265
  stream_play_camera_0.h265 stream_play_camera_1.h264)
