# Text encoding: edge cases and bounds byte for byte, and everything there is against the C
# library's iconv and against a plain telling.
nvrhal_test(text_unit
  text_gb2312_test.cpp text_utf8_test.cpp text_font_test.cpp
  OPTIMISED text_exhaustive_test.cpp text_buffers.cpp text_reference.cpp
  LIBS nvrhal_objects recording_gtest
  LABEL unit TIMEOUT 120)

# The checked-in tables are what their inputs give. Only where the inputs are installed.
find_package(Python3 COMPONENTS Interpreter)
find_program(OPENCC_DICT opencc_dict)
if(Python3_FOUND AND OPENCC_DICT AND EXISTS /usr/share/opencc/STCharacters.ocd2
   AND EXISTS /usr/share/unicode/Unihan_Variants.txt.bz2)
  add_test(NAME text_tables.AreWhatTheirInputsGive
    COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/text_tables/make_text_tables.py --check)
  set_tests_properties(text_tables.AreWhatTheirInputsGive PROPERTIES LABELS "unit;sources" TIMEOUT 60)
endif()
