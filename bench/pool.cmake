# The frame pool beside plain memcpy into the same ring and beside queues of vectors.
add_executable(bench_pool pool/main.cpp pool/stores.cpp intake/idle_platform.cpp)
target_link_libraries(bench_pool PRIVATE nvrhal_objects bench_build_kind)
