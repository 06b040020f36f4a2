# The library that draws and reads stamps, for whoever asks first: tests, and "vboard test".
include_guard(GLOBAL)
add_library(stamp STATIC ${CMAKE_CURRENT_LIST_DIR}/stamp.cpp)
target_include_directories(stamp PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_compile_options(stamp PRIVATE -O2) # it computes for long, whatever the tests around it are compiled with
