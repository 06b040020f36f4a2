# What the library costs before it does anything.
add_executable(bench_load footprint/load.c)
target_link_libraries(bench_load PRIVATE ${CMAKE_DL_LIBS})

# Size, stack and memory, in builds of its own for amd64 and 32-bit ARM.
add_custom_target(footprint COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/footprint/footprint.sh USES_TERMINAL VERBATIM)
