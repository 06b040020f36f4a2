# What tests/musl runs in plain C, over the platform of these tests; both compare with the same golden files.
set(operations_dir ${CMAKE_CURRENT_LIST_DIR}/../musl)
nvrhal_test(trace_operations ${CMAKE_CURRENT_LIST_DIR}/operations_test.cpp ${operations_dir}/operations.c
  LIBS nvrhal_objects recording_gtest LABEL trace)
target_include_directories(trace_operations PRIVATE ${operations_dir})
