# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT

# With ORV_PRECOMPILE, what most sources of a target include is read once for all of them. That
# hides a missing #include, so it is for builds whose sources another build compiles as well.
function(orv_precompile target)
  if(ORV_PRECOMPILE)
    target_precompile_headers(${target} PRIVATE
      <QtCore/QHash> <QtCore/QString> <QtCore/QStringList> <QtCore/QTextStream> <QtCore/QVariant>
      <QtCore/QVector> <algorithm> <functional> <memory>)
  endif()
endfunction()
