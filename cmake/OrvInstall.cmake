# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT

# Installs the library, its headers, a CMake package and a pkg-config file, as two components.

include(CMakePackageConfigHelpers)

set(ORV_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/OrvCore)

install(TARGETS OrvCore EXPORT OrvCoreTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/Kestrin
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

install(EXPORT OrvCoreTargets NAMESPACE Orv::
  DESTINATION ${ORV_CMAKE_DIR} COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/OrvCoreConfig.cmake.in
  ${PROJECT_BINARY_DIR}/OrvCoreConfig.cmake INSTALL_DESTINATION ${ORV_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OrvCoreConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/OrvCoreConfig.cmake ${PROJECT_BINARY_DIR}/OrvCoreConfigVersion.cmake
  DESTINATION ${ORV_CMAKE_DIR} COMPONENT development)

# The prefix is worked out from where the file lies, so the installed tree can be moved.
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
  set(PC_PREFIX ${CMAKE_INSTALL_PREFIX})
  set(PC_LIBDIR ${CMAKE_INSTALL_LIBDIR})
else()
  file(RELATIVE_PATH PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" PC_PREFIX "\${pcfiledir}/${PC_PREFIX}")
  set(PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE ${CMAKE_INSTALL_INCLUDEDIR})
  set(PC_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR})
else()
  set(PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
if(NOT BUILD_SHARED_LIBS)
  set(PC_CFLAGS " -DORV_CORE_STATIC")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/orv-core.pc.in ${PROJECT_BINARY_DIR}/orv-core.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orv-core.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
