# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT

# Run by CPack over the staged files: adds what only a Debian package carries.
set(here ${CMAKE_CURRENT_LIST_DIR})
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)

  configure_file(${here}/copyright ${share}/doc/${package}/copyright COPYONLY)
  execute_process(COMMAND gzip -9cn ${here}/changelog
    OUTPUT_FILE ${share}/doc/${package}/changelog.Debian.gz RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "gzip failed: ${failed}")
  endif()
  file(GLOB manPages ${share}/man/man*/*.[1-9])
  foreach(page IN LISTS manPages)
    execute_process(COMMAND gzip -9n ${page} RESULT_VARIABLE failed)
    if(failed)
      message(FATAL_ERROR "gzip failed: ${failed}")
    endif()
  endforeach()
  configure_file(${here}/${package}.lintian-overrides ${share}/lintian/overrides/${package} COPYONLY)
endforeach()
