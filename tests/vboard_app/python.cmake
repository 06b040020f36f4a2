# The Python package. Debian's interpreter has its pytest; another one that stands before it on the path may not.
find_package(Python3 COMPONENTS Interpreter)
foreach(candidate "${Python3_EXECUTABLE}" /usr/bin/python3)
  if(candidate AND NOT NVRHAL_PYTEST)
    execute_process(COMMAND ${candidate} -c "import pytest" RESULT_VARIABLE missing OUTPUT_QUIET ERROR_QUIET)
    if(NOT missing)
      set(NVRHAL_PYTEST ${candidate} CACHE FILEPATH "A Python interpreter that has pytest")
    endif()
  endif()
endforeach()
set(trace_program)
if(TARGET trace_program)
  set(trace_program $<TARGET_FILE:trace_program>)
endif()
if(NVRHAL_PYTEST)
  # vboard_python_test(NAME FILE...): one CTest case, of files in tests/python.
  function(vboard_python_test name)
    list(TRANSFORM ARGN PREPEND ${PROJECT_SOURCE_DIR}/tests/python/ OUTPUT_VARIABLE files)
    add_test(NAME ${name} COMMAND ${NVRHAL_PYTEST} -B -m pytest -q -p no:cacheprovider ${files})
    set_tests_properties(${name} PROPERTIES LABELS vboard_app TIMEOUT 120
      ENVIRONMENT "PYTHONPATH=${PROJECT_SOURCE_DIR}/python;STREAM_DIR=${STAMPED_STREAM_DIR};VBOARD_PROGRAM=$<TARGET_FILE:vboard_program>;TRACE_PROGRAM=${trace_program}"
      ENVIRONMENT_MODIFICATION "PATH=path_list_prepend:${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
  endfunction()
  vboard_python_test(PythonPackage.PiecesAndRequests test_pieces.py test_requests.py)
  # Recorders are started by "vboard run". A sanitizer's own run-time library wants to be the first that is
  # preloaded, and what is tested here is Python.
  if(TARGET vboard_server AND NOT NVRHAL_SANITIZE)
    vboard_python_test(PythonPackage.RecordersOnBoards test_run.py)
    vboard_python_test(PythonPackage.Fixtures test_plugin.py)
    vboard_python_test(PythonPackage.Readme test_readme.py)
    vboard_python_test(Trace.ToolsOnRealTraces test_trace_tools.py)
  endif()
endif()
