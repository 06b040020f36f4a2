nvrhal_test(vboard_devices
  ${CMAKE_CURRENT_LIST_DIR}/devices_input_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/devices_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/key_names_test.cpp
  LIBS nvrhal vboard
  LABEL vboard)
