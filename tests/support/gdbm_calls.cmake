# Lets the tests of TARGET see each gdbm call and make some fail: tests/support/gdbm_calls.h.
function(kestan_watch_gdbm target)
  target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/gdbm_calls.cc)
  foreach(call open close store fetch delete firstkey nextkey sync reorganize setopt)
    target_link_options(${target} PRIVATE LINKER:--wrap=gdbm_${call})
  endforeach()
endfunction()
