# What is installed, in three components: "runtime" (the shared libraries and the log configuration),
# "development" (all that a program is built with) and "tools" (tesselctl and tessel-arraysim).
include(CMakePackageConfigHelpers)

set(TESSEL_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/OvraTessel)
set(TESSEL_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# Libraries that are not where the loader looks by itself are found beside each other, wherever the tree is moved.
set(TESSEL_INSTALL_RPATH)
set(TESSEL_TOOL_RPATH)
if(NOT CMAKE_INSTALL_FULL_LIBDIR IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
  file(RELATIVE_PATH libraries_from_tools ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set(TESSEL_INSTALL_RPATH "$ORIGIN")
  set(TESSEL_TOOL_RPATH "$ORIGIN/${libraries_from_tools}")
endif()

foreach(tool tesselctl tessel-arraysim)
  if(TARGET ${tool})
    set_target_properties(${tool} PROPERTIES INSTALL_RPATH "${TESSEL_TOOL_RPATH}")
    install(TARGETS ${tool} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  endif()
endforeach()
if(TARGET tesselctl)
  install(FILES cli/man/tesselctl.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES cli/completion/tesselctl.bash RENAME tesselctl
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools)
endif()
if(TARGET tessel-arraysim)
  install(FILES packaging/man/tessel-arraysim.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES docs/simulator.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/ovra-tessel-tools COMPONENT tools)
endif()
# Tools of one file need nothing else.
if(NOT BUILD_SHARED_LIBS)
  return()
endif()

set(libraries OvraTesselAPI OvraRestAPI OvraLogAPI)
set_target_properties(${libraries} PROPERTIES INSTALL_RPATH "${TESSEL_INSTALL_RPATH}")
install(TARGETS ${libraries} EXPORT OvraTesselTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/platform/log/Tessel_API.ini DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime)

install(TARGETS OvraTesselAPI_static EXPORT OvraTesselTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
# The mocks are headers; their users bring gmock.
add_library(OvraTesselMocks INTERFACE)
set_target_properties(OvraTesselMocks PROPERTIES EXPORT_NAME TesselMocks)
target_link_libraries(OvraTesselMocks INTERFACE OvraTesselAPI GTest::gmock)
install(TARGETS OvraTesselMocks EXPORT OvraTesselTargets)
# The headers of the platform libraries serve whoever builds a replacement of one.
install(DIRECTORY include/tessel platform/log/include/ovra platform/rest/include/ovra
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development FILES_MATCHING PATTERN "*.h")

install(EXPORT OvraTesselTargets NAMESPACE Ovra:: DESTINATION ${TESSEL_PACKAGE_DIR} COMPONENT development)
configure_package_config_file(cmake/OvraTesselConfig.cmake.in ${PROJECT_BINARY_DIR}/OvraTesselConfig.cmake
  INSTALL_DESTINATION ${TESSEL_PACKAGE_DIR} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OvraTesselConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/OvraTesselConfig.cmake ${PROJECT_BINARY_DIR}/OvraTesselConfigVersion.cmake
  DESTINATION ${TESSEL_PACKAGE_DIR} COMPONENT development)

file(RELATIVE_PATH TESSEL_PREFIX_FROM_PKGCONFIG
  ${CMAKE_INSTALL_PREFIX}/${TESSEL_PKGCONFIG_DIR} ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" TESSEL_PREFIX_FROM_PKGCONFIG ${TESSEL_PREFIX_FROM_PKGCONFIG})
configure_file(cmake/ovra-tessel.pc.in ${PROJECT_BINARY_DIR}/ovra-tessel.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ovra-tessel.pc DESTINATION ${TESSEL_PKGCONFIG_DIR} COMPONENT development)

# Beside each other as in the checkout, so that the manual's links lead to the examples.
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libovra-tessel-dev COMPONENT development
  FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "*.png" PATTERN "*.cpp" PATTERN "*.sh"
                 PATTERN "quickstart/CMakeLists.txt")
