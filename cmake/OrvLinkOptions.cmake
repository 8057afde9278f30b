# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT

# Link options for the libraries. Each is used only if compiler and linker support it.

include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)

# Links the shared library `target` with the version script `map`, which says what the library
# exports. Undefined symbols are errors.
function(orv_link_options target map)
  orv_check_linker(ORV_HAVE_VERSION_SCRIPT LINKER:--version-script=${map})
  orv_check_linker(ORV_HAVE_NO_UNDEFINED LINKER:--no-undefined)
  if(ORV_HAVE_VERSION_SCRIPT)
    target_link_options(${target} PRIVATE LINKER:--version-script=${map})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${map})
  endif()
  # The executable brings the runtime of a sanitizer.
  if(ORV_SANITIZE)
    orv_check_linker(ORV_HAVE_UNDEFS LINKER:-z,undefs)
    if(ORV_HAVE_UNDEFS)
      target_link_options(${target} PRIVATE LINKER:-z,undefs)
    endif()
  elseif(ORV_HAVE_NO_UNDEFINED)
    target_link_options(${target} PRIVATE LINKER:--no-undefined)
  endif()
endfunction()

# The shared library calls its own functions directly, not through the symbol table.
function(orv_bind_calls_within target)
  check_cxx_compiler_flag(-fno-semantic-interposition ORV_HAVE_NO_SEMANTIC_INTERPOSITION)
  if(ORV_HAVE_NO_SEMANTIC_INTERPOSITION)
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
  endif()
  orv_check_linker(ORV_HAVE_BSYMBOLIC_FUNCTIONS LINKER:-Bsymbolic-functions)
  if(ORV_HAVE_BSYMBOLIC_FUNCTIONS)
    target_link_options(${target} PRIVATE LINKER:-Bsymbolic-functions)
  endif()
endfunction()

# Sets `result` in the cache: whether the linker has the option. Some linkers only warn about an
# unknown option.
function(orv_check_linker result option)
  set(CMAKE_REQUIRED_LINK_OPTIONS ${option})
  set(CMAKE_REQUIRED_QUIET ON)
  check_cxx_source_compiles("int main() { return 0; }" ${result}
    FAIL_REGEX "[Uu]nknown (option|argument)|[Uu]nrecogni[sz]ed (option|command)|LNK4044|ignoring")
endfunction()
