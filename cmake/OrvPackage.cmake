# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT

# Debian packages: for each library what programs run with and what they are built with
# (liborvcore1 and liborvcore-dev, liborvinspect1 and liborvinspect-dev), orv-tools, the program
# orv, and orv-doc, the HTML documents. What is compiled has its debug information in a package of
# its own, NAME-dbgsym. scripts/package builds them with Debian's flags and paths.

set(debianFiles ${PROJECT_SOURCE_DIR}/packaging/debian)
set(release 1)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_CONTACT "The OrvCore authors <maintainers@orvcore.example>")
set(CPACK_STRIP_FILES OFF) # what goes to -dbgsym is taken out of the files
set(CPACK_DEBIAN_PACKAGE_SOURCE orvcore)
set(CPACK_ORV_SOURCE_DIR ${PROJECT_SOURCE_DIR})
set(CPACK_PRE_BUILD_SCRIPTS ${debianFiles}/AddDocuments.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${release})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Where the packages' programs and libraries find each other while their needs are worked out.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR}/src/Core ${PROJECT_BINARY_DIR}/src/Inspect)
set(CPACK_COMPONENTS_ALL)

# A package made of a component: its section, the other packages that it needs, and what it is in
# one line and in a paragraph.
macro(orv_package package component section depends summary description)
  string(TOUPPER ${component} upper)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}")
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${description}")
endmacro()

# As orv_package(), for what programs run with. CPack writes shlibs for the exact version and no
# trigger.
macro(orv_package_library library package component depends summary description)
  orv_package(${package} ${component} libs "${depends}" "${summary}" "${description}")
  set(SHLIBS_LIBRARY ${library})
  set(SHLIBS_PACKAGE ${package})
  configure_file(${debianFiles}/shlibs.in ${PROJECT_BINARY_DIR}/debian/${package}/shlibs @ONLY)
  set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA
    ${PROJECT_BINARY_DIR}/debian/${package}/shlibs ${debianFiles}/triggers)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_${upper}_DEBUGINFO_PACKAGE ON)
endmacro()

set(core liborvcore${PROJECT_VERSION_MAJOR})
set(sameVersion "(= ${PROJECT_VERSION}-${release})")

orv_package_library(libOrvCore ${core} runtime ""
  "core library of a render-graph framework"
"A host builds a graph of render passes with named inputs and outputs; the
library works out which passes the outputs need and in which order, runs them
frame by frame and hands every result on to its consumers.")
orv_package(liborvcore-dev development libdevel
  "${core} ${sameVersion}, qtbase5-dev (>= 5.12)"
  "core library of a render-graph framework (development)"
"This package holds what it takes to build hosts and render passes: the
headers, a CMake package (OrvCore, with the target Orv::Core), a pkg-config
file (orv-core), the documents and examples.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS orv-doc)

if(TARGET OrvInspect)
  set(inspect liborvinspect${PROJECT_VERSION_MAJOR})
  orv_package_library(libOrvInspect ${inspect} inspectRuntime "${core} (>= ${PROJECT_VERSION})"
    "library that explains, checks and times render graphs"
"It tells why a pass of a render graph runs or does not and where its inputs
come from, checks graphs, draws, times and compares them, and keeps them in
documents.")
  orv_package(liborvinspect-dev inspectDevelopment libdevel
    "${inspect} ${sameVersion}, liborvcore-dev ${sameVersion}"
    "library that explains, checks and times render graphs (development)"
"This package holds what it takes to build programs with the library: the
headers, a CMake package (OrvInspect, with the target Orv::Inspect) and a
pkg-config file (orv-inspect).")
endif()
if(TARGET orv)
  orv_package(orv-tools tools devel "${core} (>= ${PROJECT_VERSION}), ${inspect} ${sameVersion}"
    "program that explains, checks, draws and compares render graphs"
"The program orv answers questions about render graphs in documents: which
passes run in which order, why one does not run, where an input comes from,
what is wrong, what has changed. It draws them and runs them with stand-ins.")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_TOOLS_DEBUGINFO_PACKAGE ON)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS graphviz)
endif()

# There once the target docs has been built.
if(TARGET docs)
  orv_package(orv-doc doc doc ""
    "core library of a render-graph framework (documents)"
"This package holds the documents as HTML: the tutorial, the architecture, a
page for each module and the reference of libOrvCore and libOrvInspect.")
  set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)
endif()

include(CPack)
