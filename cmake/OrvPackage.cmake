# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT

# Debian packages: for each library, a run-time and a development package (liborvcore1 and
# liborvcore-dev, liborvinspect1 and liborvinspect-dev); orv-tools with the program orv; orv-doc
# with the HTML documents. Debug information is in separate packages, NAME-dbgsym. scripts/package
# builds them with Debian's flags and paths.

set(debianFiles ${PROJECT_SOURCE_DIR}/packaging/debian)
set(release 1)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_CONTACT "The OrvCore authors <maintainers@orvcore.example>")
set(CPACK_STRIP_FILES OFF) # the parts for -dbgsym are taken out of the files
set(CPACK_DEBIAN_PACKAGE_SOURCE orvcore)
set(CPACK_ORV_SOURCE_DIR ${PROJECT_SOURCE_DIR})
set(CPACK_PRE_BUILD_SCRIPTS ${debianFiles}/AddDocuments.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${release})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Where the packages' programs and libraries find each other while CPack determines their
# dependencies.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR}/src/Core ${PROJECT_BINARY_DIR}/src/Inspect)
set(CPACK_COMPONENTS_ALL)

# Makes a package of a component, with its section, its dependencies, and its description in one
# line and in a paragraph.
macro(orv_package package component section depends summary description)
  string(TOUPPER ${component} upper)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}")
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${description}")
endmacro()

# Makes a run-time package of a library, like orv_package(). CPack would write shlibs for the exact
# version, and no trigger.
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
"A host builds a graph of render passes with named inputs and outputs. The
library determines which passes the outputs need and in which order, runs them
frame by frame and gives every result to its consumers.")
orv_package(liborvcore-dev development libdevel
  "${core} ${sameVersion}, qtbase5-dev (>= 5.12)"
  "core library of a render-graph framework (development)"
"This package contains everything to build hosts and render passes: the
headers, a CMake package (OrvCore, with the target Orv::Core), a pkg-config
file (orv-core), the documents and examples.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS orv-doc)

if(TARGET OrvInspect)
  set(inspect liborvinspect${PROJECT_VERSION_MAJOR})
  orv_package_library(libOrvInspect ${inspect} inspectRuntime "${core} (>= ${PROJECT_VERSION})"
    "library that explains, checks and times render graphs"
"The library explains why a pass of a render graph runs or does not, and where
its inputs come from. It checks graphs, draws, times and compares them, and
stores them in documents.")
  orv_package(liborvinspect-dev inspectDevelopment libdevel
    "${inspect} ${sameVersion}, liborvcore-dev ${sameVersion}"
    "library that explains, checks and times render graphs (development)"
"This package contains everything to build programs with the library: the
headers, a CMake package (OrvInspect, with the target Orv::Inspect) and a
pkg-config file (orv-inspect).")
endif()
if(TARGET orv)
  orv_package(orv-tools tools devel "${core} (>= ${PROJECT_VERSION}), ${inspect} ${sameVersion}"
    "program that explains, checks, draws and compares render graphs"
"The program orv answers questions about render graphs in documents: which
passes run in which order, why a pass does not run, where an input comes from,
what is wrong, what has changed. It draws graphs, and runs them with stand-ins
in place of the passes.")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_TOOLS_DEBUGINFO_PACKAGE ON)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS graphviz)
endif()

# Exists after the target docs has been built.
if(TARGET docs)
  orv_package(orv-doc doc doc ""
    "core library of a render-graph framework (documents)"
"This package contains the documents as HTML: the tutorial, the architecture, a
page for each module and the reference of libOrvCore and libOrvInspect.")
  set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)
endif()

include(CPack)
