# What ext_send_stream itself costs, over a platform that does nothing.
add_executable(bench_intake intake/intake.cpp intake/idle_platform.cpp)
target_link_libraries(bench_intake PRIVATE nvrhal_objects bench_build_kind)
