# What ext_send_stream itself costs, over a platform that does nothing.
find_package(benchmark REQUIRED)
add_executable(bench_intake intake/intake.cpp intake/idle_platform.cpp)
target_link_libraries(bench_intake PRIVATE nvrhal_objects benchmark::benchmark)
