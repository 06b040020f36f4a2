# What `cmake --install` puts where, and how other projects find it: docs/installing.md.
#
# Components: runtime (libraries and programs), manuals, and development (headers, packages for CMake and
# pkg-config, examples, what a porter takes along).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Headers. Those of the seams have common names, and so a folder of their own.
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  COMPONENT development FILES_MATCHING PATTERN *.h)
install(DIRECTORY platform/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/nvrhal-platform
  COMPONENT development FILES_MATCHING PATTERN *.h)
if(NVRHAL_PLATFORM STREQUAL "virtual")
  install(DIRECTORY platform/virtual/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development FILES_MATCHING PATTERN *.h)
endif()

# pkg-config's directories are told from where its file lies, so that the whole can be moved; only in
# the system's own prefix they are absolute, and pkg-config leaves them out of the compiler's options.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(pkgconfig_prefix /usr)
else()
  file(RELATIVE_PATH to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
  string(REGEX REPLACE "/$" "" to_prefix "${to_prefix}")
  set(pkgconfig_prefix "\${pcfiledir}/${to_prefix}")
endif()

# A porter's platform that is a shared library is needed by this one, and lies beside it: a linker for
# another machine has to be told.
cmake_path(GET NVRHAL_PLATFORM FILENAME platform_name)
get_target_property(kind_of_platform nvrhal_platform TYPE)
set(needs_platform OFF)
set(pkgconfig_needs_platform "")
if(NOT NVRHAL_PLATFORM STREQUAL "virtual" AND kind_of_platform STREQUAL "SHARED_LIBRARY")
  install(TARGETS nvrhal_platform LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_SKIP)
  set(needs_platform ON)
  set(pkgconfig_needs_platform " -Wl,-rpath-link,\${libdir}")
endif()

# install_package(NAME NAMESPACE TARGET...): these targets, and the package NAME by which CMake and
# pkg-config find them.
function(install_package name namespace)
  install(TARGETS ${ARGN} EXPORT ${name}-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
  set(folder ${CMAKE_INSTALL_LIBDIR}/cmake/${name})
  install(EXPORT ${name}-targets NAMESPACE ${namespace}:: DESTINATION ${folder} COMPONENT development)
  set(made ${PROJECT_BINARY_DIR}/packages/${name})
  configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/packages/${name}-config.cmake.in
    ${made}-config.cmake INSTALL_DESTINATION ${folder} NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
  write_basic_package_version_file(${made}-config-version.cmake COMPATIBILITY SameMajorVersion)
  install(FILES ${made}-config.cmake ${made}-config-version.cmake DESTINATION ${folder} COMPONENT development)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/packages/${name}.pc.in ${made}.pc @ONLY)
  install(FILES ${made}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()

# Libraries and programs find each other wherever the whole is put. Who packages for the system's own
# directories sets CMAKE_SKIP_INSTALL_RPATH.
set_target_properties(nvrhal PROPERTIES INSTALL_RPATH "$ORIGIN")
set_target_properties(nvrhal_api PROPERTIES EXPORT_NAME api)
target_include_directories(nvrhal_api INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
set_target_properties(platform_api PROPERTIES EXPORT_NAME platform)
target_include_directories(platform_api INTERFACE
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/nvrhal-platform>)
install_package(nvrhal nvrhal nvrhal nvrhal_api)
install_package(nvrhal-platform nvrhal platform_api)
if(NVRHAL_PLATFORM STREQUAL "virtual")
  target_include_directories(vboard INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  install_package(vboard vboard vboard)
endif()


# The recorder; and the conformance suite, on the board in software.
file(RELATIVE_PATH to_libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set(programs nvrec)
if(NVRHAL_PLATFORM STREQUAL "virtual")
  list(APPEND programs nvrhal-conformance vboard_program)
endif()
foreach(program ${programs})
  if(TARGET ${program})
    set_target_properties(${program} PROPERTIES INSTALL_RPATH "$ORIGIN/${to_libraries}")
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
  endif()
endforeach()

if(NVRHAL_PLATFORM STREQUAL "virtual")
  add_subdirectory(python)
endif()
# What vboard starts programs with: nobody else links or loads it, so it has a folder of its own.
if(TARGET vboard_program)
  install(TARGETS vboard_remote LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/vboard COMPONENT runtime)
  target_compile_definitions(vboard_board PRIVATE VBOARD_LIBRARY_FOLDER="${to_libraries}/vboard")
endif()

# Examples, as a project that is built against what is installed.
set(shared_data ${CMAKE_INSTALL_DATADIR}/nvrhal)
install(DIRECTORY examples/ DESTINATION ${shared_data}/examples COMPONENT development
  FILES_MATCHING PATTERN *.c PATTERN *.h PATTERN port EXCLUDE)
install(FILES examples/standalone.cmake DESTINATION ${shared_data}/examples RENAME CMakeLists.txt
  COMPONENT development)

# What a porter takes along: a port to a made-up chip to look at, a platform to begin with, and the suite that tells whether it holds.
install(DIRECTORY examples/port DESTINATION ${shared_data}/examples COMPONENT development)
install(DIRECTORY platform/skeleton conformance DESTINATION ${shared_data} COMPONENT development
  PATTERN mutants EXCLUDE PATTERN __pycache__ EXCLUDE)

# Pages that go along: how it is built against and ported, and whose libraries are in it.
install(FILES docs/abi.md docs/installing.md docs/porting.md docs/third-party.md docs/writing-a-recorder.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT manuals)
if(TARGET nvrec)
  file(GLOB recorder_pages CONFIGURE_DEPENDS docs/recorder-*.md)
  install(FILES ${recorder_pages} DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT manuals)
  install(FILES docs/nvrec.toml DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT manuals)
  install(FILES apps/nvrec/service/nvrec.bash RENAME nvrec
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT runtime)
endif()
# A recorder that was built without the service manager's library never tells it that it stands.
if(TARGET nvrec AND NVREC_SYSTEMD_FOUND)
  configure_file(apps/nvrec/service/nvrec.service.in ${PROJECT_BINARY_DIR}/service/nvrec.service @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/service/nvrec.service DESTINATION lib/systemd/system COMPONENT runtime)
  install(FILES apps/nvrec/service/nvrec.sysusers RENAME nvrec.conf DESTINATION lib/sysusers.d COMPONENT runtime)
endif()

# The archive that `cpack` makes: everything, stripped, below one folder, to be unpacked anywhere.
if(PROJECT_IS_TOP_LEVEL)
  set(CPACK_GENERATOR TGZ)
  set(CPACK_PACKAGE_FILE_NAME nvrhal-${PROJECT_VERSION}-${platform_name}-${CMAKE_SYSTEM_PROCESSOR})
  set(CPACK_PACKAGE_CHECKSUM SHA256)
  set(CPACK_STRIP_FILES ON)
  set(CPACK_VERBATIM_VARIABLES ON)
  include(CPack)
endif()
