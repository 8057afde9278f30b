# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT

# Debian packages: liborvcore1, what hosts run with, and liborvcore-dev, what they are built with.
# scripts/package builds them with Debian's flags and paths.

set(package liborvcore${PROJECT_VERSION_MAJOR})
set(debianFiles ${PROJECT_SOURCE_DIR}/packaging/debian)
set(generatedFiles ${PROJECT_BINARY_DIR}/debian)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The OrvCore authors <maintainers@orvcore.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "core library of a render-graph framework")
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${debianFiles}/AddDocuments.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# CPack writes shlibs for the exact version and no trigger.
configure_file(${debianFiles}/shlibs.in ${generatedFiles}/shlibs @ONLY)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${generatedFiles}/shlibs ${debianFiles}/triggers)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
"A host builds a graph of render passes with named inputs and outputs; the
library works out which passes the outputs need and in which order, runs them
frame by frame and hands every result on to its consumers.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liborvcore-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "${package} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}), qtbase5-dev (>= 5.12)")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"This package holds what it takes to build hosts and render passes: the
headers, a CMake package (OrvCore, with the target Orv::Core) and a pkg-config
file (orv-core).")

include(CPack)
