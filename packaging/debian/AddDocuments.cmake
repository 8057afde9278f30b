# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT

# CPack runs this over the staged files. It adds the files that only a Debian package has.
set(here ${CMAKE_CURRENT_LIST_DIR})
set(source ${CPACK_ORV_SOURCE_DIR})

# run COMMAND...
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "${ARGV0} failed: ${failed}")
  endif()
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
  set(doc ${share}/doc/${package})

  configure_file(${here}/copyright ${doc}/copyright COPYONLY)
  configure_file(${here}/changelog ${doc}/changelog.Debian COPYONLY)
  configure_file(${source}/CHANGELOG.md ${doc}/changelog COPYONLY)
  run(gzip -9n ${doc}/changelog.Debian ${doc}/changelog)
  file(GLOB manPages ${share}/man/man*/*.[1-9])
  if(manPages)
    run(gzip -9n ${manPages})
  endif()
  configure_file(${here}/${package}.lintian-overrides ${share}/lintian/overrides/${package}
    COPYONLY)

  # The documents have the same places as in the source tree, so that their links work.
  if(package STREQUAL liborvcore-dev)
    file(GLOB pages ${source}/docs/*.md ${source}/docs/*.json ${source}/docs/*.1)
    file(COPY ${source}/README.md ${source}/CONTRIBUTING.md ${source}/CHANGELOG.md
      DESTINATION ${doc})
    file(COPY ${pages} DESTINATION ${doc}/docs)
    file(COPY ${source}/docs/images DESTINATION ${doc}/docs PATTERN *.dot EXCLUDE)
    file(COPY ${source}/docs/benchmarks DESTINATION ${doc}/docs)
    file(COPY ${source}/examples/quickstart ${source}/examples/tutorial ${source}/examples/gallery
      DESTINATION ${doc}/examples)
  elseif(package STREQUAL liborvinspect-dev)
    file(CREATE_LINK ../liborvcore-dev/docs ${doc}/docs SYMBOLIC)
  elseif(package STREQUAL orv-doc AND NOT EXISTS ${doc}/html/index.html)
    message(FATAL_ERROR "There are no documents to package: build the target docs first")
  endif()
endforeach()
