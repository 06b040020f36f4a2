# The description of the requests; a program on the board, with an agent that has no board behind it.
nvrhal_test(vboard_app_api ${CMAKE_CURRENT_LIST_DIR}/api_test.cpp LIBS vboard_api LABEL vboard_app)

add_library(vboard_fake_agent MODULE ${CMAKE_CURRENT_LIST_DIR}/fake_agent.c)
set_target_properties(vboard_fake_agent PROPERTIES POSITION_INDEPENDENT_CODE ON)
target_link_libraries(vboard_fake_agent PRIVATE Threads::Threads)
add_executable(vboard_any_program ${CMAKE_CURRENT_LIST_DIR}/any_program.c)

nvrhal_test(vboard_app_board ${CMAKE_CURRENT_LIST_DIR}/board_process_test.cpp LIBS vboard_board LABEL vboard_app)
target_compile_definitions(vboard_app_board PRIVATE
  ANY_PROGRAM="$<TARGET_FILE:vboard_any_program>" FAKE_AGENT="$<TARGET_FILE:vboard_fake_agent>")
add_dependencies(vboard_app_board vboard_any_program vboard_fake_agent)
