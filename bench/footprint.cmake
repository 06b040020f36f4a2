# What the library costs before it does anything.
add_executable(bench_load footprint/load.c)
target_link_libraries(bench_load PRIVATE ${CMAKE_DL_LIBS})
