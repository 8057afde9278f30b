# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT

# Installs the libraries and their headers, each with a CMake package and a pkg-config file, as a
# run-time and a development component. To install a component, only its own target must be built.

include(CMakePackageConfigHelpers)

# The prefix follows from the place of the file, so the installed tree can be moved.
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

# Installs a library and its pkg-config file as two components.
function(orv_install_library library pkgConfigName runtime development)
  set(cmakeDir ${CMAKE_INSTALL_LIBDIR}/cmake/${library})
  set(generated ${PROJECT_BINARY_DIR}/${library})

  install(TARGETS ${library} EXPORT ${library}Targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
      COMPONENT ${runtime} NAMELINK_COMPONENT ${development}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${development}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(EXPORT ${library}Targets NAMESPACE Orv::
    DESTINATION ${cmakeDir} COMPONENT ${development})

  configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/${library}Config.cmake.in
    ${generated}Config.cmake INSTALL_DESTINATION ${cmakeDir})
  write_basic_package_version_file(${generated}ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
  install(FILES ${generated}Config.cmake ${generated}ConfigVersion.cmake
    DESTINATION ${cmakeDir} COMPONENT ${development})

  configure_file(${PROJECT_SOURCE_DIR}/cmake/${pkgConfigName}.pc.in
    ${PROJECT_BINARY_DIR}/${pkgConfigName}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${pkgConfigName}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${development})
endfunction()

orv_install_library(OrvCore orv-core runtime development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/Kestrin
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
  PATTERN Inspect EXCLUDE)

if(TARGET OrvInspect)
  orv_install_library(OrvInspect orv-inspect inspectRuntime inspectDevelopment)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/Kestrin/Orv/Inspect
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Kestrin/Orv COMPONENT inspectDevelopment)
endif()

# The HTML documents, if the target docs has been built.
if(TARGET docs)
  install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/orv-doc COMPONENT doc OPTIONAL)
endif()
