nvrhal_test(vboard_devices
  ${CMAKE_CURRENT_LIST_DIR}/devices_test.cpp
  LIBS nvrhal vboard
  LABEL vboard)
