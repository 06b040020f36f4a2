# `vboard run` and `vboard ctl`, as real processes: a program on the board, HTTP, WebSockets, the shell.
add_executable(vboard_on_board ${CMAKE_CURRENT_LIST_DIR}/on_board.c)
target_link_libraries(vboard_on_board PRIVATE vboard)

if(NVRHAL_PYTEST AND NOT NVRHAL_SANITIZE)
  foreach(part run requests_http ctl)
    add_test(NAME VboardServer.${part} COMMAND ${NVRHAL_PYTEST} -B -m pytest -q -p no:cacheprovider
      ${CMAKE_CURRENT_LIST_DIR}/server/test_${part}.py)
    set_tests_properties(VboardServer.${part} PROPERTIES LABELS vboard_app TIMEOUT 180
      ENVIRONMENT "VBOARD=$<TARGET_FILE:vboard_program>;VBOARD_PROGRAM=$<TARGET_FILE:vboard_any_program>;VBOARD_ON_BOARD=$<TARGET_FILE:vboard_on_board>")
  endforeach()
endif()
