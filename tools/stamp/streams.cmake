# stamped_stream(NAME options...) - a stamped stream in ${STAMPED_STREAM_DIR}, made once by the build
# and again only when its options or the program change. Two lists may ask for the same stream.
# Targets that need streams depend on `stamped_streams`.
include_guard(GLOBAL)
set(STAMPED_STREAM_DIR ${PROJECT_BINARY_DIR}/streams CACHE INTERNAL "")
if(NOT TARGET make_streams)
  add_subdirectory(${CMAKE_CURRENT_LIST_DIR} ${PROJECT_BINARY_DIR}/tools/stamp)
endif()
add_custom_target(stamped_streams ALL)
file(MAKE_DIRECTORY ${STAMPED_STREAM_DIR})

function(stamped_stream name)
  if(TARGET stream_${name})
    return()
  endif()
  # libx265 leaves memory behind when it closes; a sanitizer build is not to stop at that.
  add_custom_command(OUTPUT ${STAMPED_STREAM_DIR}/${name}
    COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=0 $<TARGET_FILE:make_streams> ${ARGN} --out ${STAMPED_STREAM_DIR}/${name}
    DEPENDS make_streams
    COMMENT "Encoding ${name}"
    VERBATIM)
  add_custom_target(stream_${name} DEPENDS ${STAMPED_STREAM_DIR}/${name})
  add_dependencies(stamped_streams stream_${name})
endfunction()
