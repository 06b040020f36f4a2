# The text conversions beside iconv, a plain scan of the same tables, and OpenCC where it is installed.
find_package(PkgConfig REQUIRED)
pkg_check_modules(BENCH_TEXT_OPENCC IMPORTED_TARGET opencc)
add_executable(bench_text text/main.cpp text/encodings.cpp text/scripts.cpp text/contest.cpp
  intake/idle_platform.cpp)
target_link_libraries(bench_text PRIVATE nvrhal_objects bench_build_kind)
if(BENCH_TEXT_OPENCC_FOUND)
  target_link_libraries(bench_text PRIVATE PkgConfig::BENCH_TEXT_OPENCC)
  target_compile_definitions(bench_text PRIVATE BENCH_TEXT_OPENCC)
endif()
