# What is made of the description of the board's requests.
add_test(NAME BoardRequests.ArePageAndMethodsOfTheDescription
  COMMAND ${PROJECT_SOURCE_DIR}/tools/board_requests.py --check)
set_tests_properties(BoardRequests.ArePageAndMethodsOfTheDescription PROPERTIES LABELS vboard_app TIMEOUT 60)
