# Snapshots of running channels, beside the ffmpeg tool taking one frame of the same stream.
find_package(PkgConfig REQUIRED)
pkg_check_modules(BENCH_SNAPSHOT_FFMPEG REQUIRED IMPORTED_TARGET libavformat libavcodec libavutil)
add_executable(bench_snapshot snapshot/cameras.cpp snapshot/main.cpp wall/clip.cpp wall/contestant.cpp)
target_include_directories(bench_snapshot PRIVATE wall snapshot)
target_link_libraries(bench_snapshot PRIVATE nvrhal vboard bench_build_kind PkgConfig::BENCH_SNAPSHOT_FFMPEG)
target_compile_definitions(bench_snapshot PRIVATE
  BENCH_SNAPSHOT_MAKE_CLIPS="${CMAKE_CURRENT_SOURCE_DIR}/wall/make_clips.sh")
