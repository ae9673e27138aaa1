# SPDX-License-Identifier: GPL-3.0-or-later
# Builds for 32-bit x86 on a 64-bit machine, with g++-multilib and the 32-bit libraries that
# scripts/install-32bit.sh unpacks beside the build, away from the machine's own.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_C_FLAGS_INIT -m32)
set(CMAKE_CXX_FLAGS_INIT -m32)
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)

set(KESTAN_ROOT_32BIT ${CMAKE_CURRENT_LIST_DIR}/../build/32bit-root)
set(CMAKE_FIND_ROOT_PATH ${KESTAN_ROOT_32BIT})
# Where the libraries there find each other. Unlike the newer tag, the older one counts for them too.
set(KESTAN_LIBRARIES_32BIT
  ${KESTAN_ROOT_32BIT}/usr/lib/i386-linux-gnu:${KESTAN_ROOT_32BIT}/lib/i386-linux-gnu)
set(CMAKE_EXE_LINKER_FLAGS_INIT
  "-Wl,--disable-new-dtags -Wl,-rpath,${KESTAN_LIBRARIES_32BIT} -Wl,-rpath-link,${KESTAN_LIBRARIES_32BIT}")
# The search library loads others by itself, and then only its own tag counts.
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${CMAKE_EXE_LINKER_FLAGS_INIT})
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
