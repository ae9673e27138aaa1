# Builds for 32-bit x86 on a 64-bit machine, with g++-multilib and the 32-bit libraries that
# scripts/install-32bit.sh unpacks beside the build, away from the machine's own.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_CXX_FLAGS_INIT -m32)
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)

set(KESTAN_ROOT_32BIT ${CMAKE_CURRENT_LIST_DIR}/../build/32bit-root)
set(CMAKE_FIND_ROOT_PATH ${KESTAN_ROOT_32BIT})
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
