# vboard_embed(TARGET FUNCTION FOLDER files...): the target carries these files of the folder; see embedded.h.
function(vboard_embed target function folder)
  set(output ${CMAKE_CURRENT_BINARY_DIR}/${function}.cpp)
  list(TRANSFORM ARGN PREPEND ${folder}/ OUTPUT_VARIABLE inputs)
  string(REPLACE ";" "|" names "${ARGN}")
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -DOUTPUT=${output} -DFUNCTION=${function} -DFOLDER=${folder} "-DFILES=${names}"
            -P ${PROJECT_SOURCE_DIR}/apps/vboard/embed.cmake
    DEPENDS ${inputs} ${PROJECT_SOURCE_DIR}/apps/vboard/embed.cmake
    VERBATIM)
  target_sources(${target} PRIVATE ${output})
endfunction()
