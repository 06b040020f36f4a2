# Scenarios: reading, playing on a board in memory, the command; and those of the recorder on its board.
find_package(PkgConfig REQUIRED)
pkg_check_modules(TINYXML2 REQUIRED IMPORTED_TARGET tinyxml2)
nvrhal_test(vboard_app_scenario
  ${CMAKE_CURRENT_LIST_DIR}/scenario_command_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/scenario_play_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/scenario_read_test.cpp
  LIBS vboard_scenario PkgConfig::TINYXML2 LABEL vboard_app)

# The recorder's scenarios, each a test of its own. They are stepped: what they see is the same in every run.
include(${PROJECT_SOURCE_DIR}/tools/stamp/streams.cmake)
set(scenario_camera --size 320x180 --frames 1000 --gop 10 --preset ultrafast) # as in tests/examples
foreach(channel 0 2)
  stamped_stream(recorder_${channel}.h264 --codec h264 --channel ${channel} ${scenario_camera})
endforeach()
foreach(channel 1 3)
  stamped_stream(recorder_${channel}.h265 --codec h265 --channel ${channel} ${scenario_camera})
endforeach()
stamped_stream(play_0.h264 --codec h264 --frames 125 --gop 25 --channel 20 --size 640x360 --fps 25 --preset ultrafast)
stamped_stream(play_1.h265 --codec h265 --frames 125 --gop 25 --channel 21 --size 640x360 --fps 25 --preset ultrafast)

if(NVRHAL_SANITIZE MATCHES "thread")
  return() # the run-time library of the thread sanitizer does not stand that the agent is preloaded
endif()

add_custom_target(scenarios ALL)
add_dependencies(scenarios vboard_program vboard_remote nvrec stream_recorder_0.h264 stream_recorder_1.h265
  stream_recorder_2.h264 stream_recorder_3.h265 stream_play_0.h264 stream_play_1.h265)
file(GLOB scenarios CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/scenarios/*.yaml)
foreach(file ${scenarios})
  get_filename_component(name ${file} NAME_WE)
  add_test(NAME Scenario.${name}
    COMMAND vboard_program test ${file} --define STREAMS=${STAMPED_STREAM_DIR}
            --output ${CMAKE_CURRENT_BINARY_DIR}/scenarios -- $<TARGET_FILE:nvrec>)
  set_tests_properties(Scenario.${name} PROPERTIES TIMEOUT 120 LABELS vboard_app)
endforeach()

# An application of others, as they would test it: in real time, since it has clocks of its own.
add_dependencies(scenarios recorder)
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/scenarios/recordings)
add_test(NAME Scenario.example_recorder
  COMMAND vboard_program test ${PROJECT_SOURCE_DIR}/examples/recorder/wall.yaml --define STREAMS=${STAMPED_STREAM_DIR}
          --output ${CMAKE_CURRENT_BINARY_DIR}/scenarios -- $<TARGET_FILE:recorder>
          ${CMAKE_CURRENT_BINARY_DIR}/scenarios/recordings)
set_tests_properties(Scenario.example_recorder PROPERTIES TIMEOUT 120 LABELS vboard_app)
