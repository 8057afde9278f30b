# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT

# Warnings, sanitizers and coverage for a target of this project.
function(orv_compile_options target)
  target_compile_features(${target} PRIVATE cxx_std_17)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /utf-8 $<$<BOOL:${ORV_WERROR}>:/WX>)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
      $<$<BOOL:${ORV_WERROR}>:-Werror>)
  endif()
  target_compile_definitions(${target} PRIVATE
    QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_FOREACH
    QT_DEPRECATED_WARNINGS QT_DISABLE_DEPRECATED_BEFORE=0x050C00)
  if(ORV_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=${ORV_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${ORV_SANITIZE})
  endif()
  if(ORV_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage)
    target_link_options(${target} PRIVATE --coverage)
  endif()
endfunction()
