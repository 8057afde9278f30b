# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT

# With ORV_PRECOMPILE, the headers that most sources of a target include are read once for all of
# them. This hides a missing #include: the presets dev and clang precompile; release, debug, asan,
# tsan and m32 do not, and compile the same sources.

set(ORV_PRECOMPILED_HEADERS
  <QtCore/QHash> <QtCore/QString> <QtCore/QStringList> <QtCore/QTextStream> <QtCore/QVariant>
  <QtCore/QVector> <algorithm> <functional> <memory> <string> <vector>)

# orv_precompile(TARGET [HEADER...]): precompiles these headers for the sources of the target.
function(orv_precompile target)
  if(ORV_PRECOMPILE)
    target_precompile_headers(${target} PRIVATE ${ORV_PRECOMPILED_HEADERS} ${ARGN})
    orv_precompile_for_ccache(${target})
  endif()
endfunction()

# orv_reuse_precompiled(TARGET FROM): what has been precompiled for FROM, which is compiled with the
# same options.
function(orv_reuse_precompiled target from)
  if(ORV_PRECOMPILE)
    target_precompile_headers(${target} REUSE_FROM ${from})
    orv_precompile_for_ccache(${target})
  endif()
endfunction()

# ccache caches a source with precompiled headers if g++ names them in the preprocessed text (and if
# CCACHE_SLOPPINESS is pch_defines,time_macros).
function(orv_precompile_for_ccache target)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_compile_options(${target} PRIVATE -fpch-preprocess)
  endif()
endfunction()
