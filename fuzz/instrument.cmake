# SPDX-License-Identifier: GPL-3.0-or-later
# Builds everything, the library first of all, so that libFuzzer sees which branches an input takes
# and the sanitizers see what it does.
option(KESTAN_FUZZ_ADDRESSES "Check every access to memory, which takes most of the time" ON)
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "KESTAN_BUILD_FUZZ needs clang, which brings libFuzzer; the compiler here is "
    "${CMAKE_CXX_COMPILER_ID}. Use the preset `fuzz`, or pass -DCMAKE_CXX_COMPILER=clang++.")
endif()
# Reports of comparisons would double the time of `postings`, whose tables take many.
add_compile_options(-fsanitize=fuzzer-no-link,undefined -fno-sanitize-recover=all
  -fno-omit-frame-pointer -fno-sanitize-coverage=trace-cmp)
add_link_options(-fsanitize=undefined)
if(KESTAN_FUZZ_ADDRESSES)
  add_compile_options(-fsanitize=address)
  add_link_options(-fsanitize=address)
endif()
