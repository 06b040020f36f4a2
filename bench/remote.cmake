# What the board's page costs the recorder: the script runs both; "ninja bench_remote" does it.
if(TARGET vboard_program AND TARGET nvrec)
  add_custom_target(bench_remote
    COMMAND ${CMAKE_CURRENT_LIST_DIR}/remote/remote.py --vboard $<TARGET_FILE:vboard_program> --nvrec $<TARGET_FILE:nvrec>
    DEPENDS vboard_program nvrec vboard_remote
    USES_TERMINAL VERBATIM)
endif()
