# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT

# With ORV_PRECOMPILE, the headers that most sources of a target include are read once for all of
# them. This hides a missing #include, so use it only for sources that another build compiles
# without it.
function(orv_precompile target)
  if(ORV_PRECOMPILE)
    target_precompile_headers(${target} PRIVATE
      <QtCore/QHash> <QtCore/QString> <QtCore/QStringList> <QtCore/QTextStream> <QtCore/QVariant>
      <QtCore/QVector> <algorithm> <functional> <memory>)
  endif()
endfunction()
