# SPDX-License-Identifier: GPL-3.0-or-later
# Sends the gdbm calls of TARGET through its interposer: tests/support/gdbm_interposer.h.
function(kestan_interpose_gdbm target)
  target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/gdbm_interposer.cc)
  foreach(call open close store fetch delete firstkey nextkey sync reorganize setopt)
    target_link_options(${target} PRIVATE LINKER:--wrap=gdbm_${call})
  endforeach()
endfunction()

# Lets the tests of TARGET see each gdbm call and make some fail: tests/support/gdbm_calls.h.
function(kestan_watch_gdbm target)
  kestan_interpose_gdbm(${target})
  target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/gdbm_calls.cc)
endfunction()
