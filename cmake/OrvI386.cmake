# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT

# A toolchain file for 32 bits on a 64-bit Debian: g++ -m32, with the Qt and the test libraries that
# scripts/sysroot-i386 unpacks.

set(sysroot ${CMAKE_CURRENT_LIST_DIR}/../build/sysroot-i386)
get_filename_component(sysroot ${sysroot} ABSOLUTE)
set(libraries ${sysroot}/usr/lib/i386-linux-gnu)

set(CMAKE_CXX_FLAGS_INIT -m32)
# With the old kind of path (RPATH), the libraries that Qt loads are found there, too.
string(JOIN "," paths -Wl --disable-new-dtags
  -rpath ${libraries} -rpath ${sysroot}/lib/i386-linux-gnu)
set(CMAKE_EXE_LINKER_FLAGS_INIT ${paths})
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${paths})
set(CMAKE_PREFIX_PATH ${sysroot}/usr)
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
