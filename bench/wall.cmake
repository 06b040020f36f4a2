find_package(PkgConfig REQUIRED)
# A composed wall as fast as it goes, beside a bare loop, the ffmpeg tool and GStreamer.
pkg_check_modules(BENCH_WALL_FFMPEG REQUIRED IMPORTED_TARGET libavformat libavcodec libavutil)
add_executable(bench_wall
  wall/bare_loop.cpp wall/clip.cpp wall/contestant.cpp wall/library_wall.cpp wall/main.cpp wall/tools.cpp)
target_link_libraries(bench_wall PRIVATE nvrhal vboard bench_build_kind PkgConfig::BENCH_WALL_FFMPEG)
target_include_directories(bench_wall PRIVATE wall)
target_link_libraries(bench_wall PRIVATE yuv)
target_compile_definitions(bench_wall PRIVATE
  BENCH_WALL_MAKE_CLIPS="${CMAKE_CURRENT_SOURCE_DIR}/wall/make_clips.sh")
