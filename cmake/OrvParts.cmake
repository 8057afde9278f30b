# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT

# The parts that need more than CMake, a compiler and Qt Core, and the messages when something is
# missing.

# Prints one line about a part that is not built: its name, the reason, and the Debian packages to
# install.
function(orv_left_out part reason)
  set(install "")
  if(ARGN)
    list(JOIN ARGN " " packages)
    set(install "; on Debian: apt install ${packages}")
  endif()
  message(STATUS "Left out: ${part} (${reason}${install})")
endfunction()

# The tests are built only on request, and only if everything that they need is found.
function(orv_find_what_tests_need)
  find_package(GTest QUIET)
  find_path(RAPIDCHECK_INCLUDE_DIR rapidcheck/gtest.h)
  find_library(RAPIDCHECK_LIBRARY rapidcheck)
  set(missing)
  if(NOT GTest_FOUND)
    list(APPEND missing libgtest-dev)
  endif()
  if(NOT TARGET GTest::gmock)
    list(APPEND missing libgmock-dev)
  endif()
  if(NOT RAPIDCHECK_INCLUDE_DIR OR NOT RAPIDCHECK_LIBRARY)
    list(APPEND missing librapidcheck-dev)
  endif()
  find_program(ORV_PKG_CONFIG NAMES pkg-config)
  if(NOT ORV_PKG_CONFIG)
    list(APPEND missing pkg-config)
  endif()
  if(missing)
    list(JOIN missing " " packages)
    message(FATAL_ERROR
      "The tests need more than is installed; on Debian: apt install ${packages}\n"
      "./scripts/test installs all that they use. The preset release builds the libraries, the "
      "program orv and the examples without tests.")
  endif()
endfunction()

# Reports the parts that no directory has reported itself.
function(orv_say_what_is_left_out)
  if(NOT ORV_BUILD_TESTS)
    orv_left_out(tests "the preset dev builds them"
      libgtest-dev libgmock-dev librapidcheck-dev pkg-config)
  endif()
  if(NOT TARGET docs)
    orv_left_out("target docs" "doxygen or python3 is missing"
      doxygen doxygen-awesome-css graphviz python3)
  endif()
  if(NOT TARGET docs-images)
    orv_left_out("target docs-images" "dot is missing" graphviz)
  endif()
endfunction()
