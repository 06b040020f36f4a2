# The scaler and the encoder by themselves.
nvrhal_test(vboard_snap
  ${CMAKE_CURRENT_LIST_DIR}/snap_scaler_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/snap_encoder_test.cpp
  LIBS board_rig LABEL vboard TIMEOUT 300)
