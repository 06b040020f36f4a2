# The recorder's screen furniture: its pieces on the board, and the program's pictures.
pkg_check_modules(NVREC_FREETYPE REQUIRED IMPORTED_TARGET freetype2)

nvrhal_test(nvrec_furniture_test
  ${CMAKE_CURRENT_LIST_DIR}/furniture_test.cpp
  LIBS nvrec_run nvrec_pieces PkgConfig::NVREC_FREETYPE LABEL nvrec TIMEOUT 120)

nvrhal_test(nvrec_furniture_wall_test
  ${CMAKE_CURRENT_LIST_DIR}/furniture_wall_test.cpp
  LIBS nvrec_run LABEL nvrec TIMEOUT 120)
target_compile_definitions(nvrec_furniture_wall_test PRIVATE
  NVREC_CLIPS="${PROJECT_BINARY_DIR}/clips/nvrec" NVREC_PROGRAM="$<TARGET_FILE:nvrec>")
add_dependencies(nvrec_furniture_wall_test nvrec nvrec_clips)
