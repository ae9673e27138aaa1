# SPDX-License-Identifier: GPL-3.0-or-later
# The naive model as a library, for all who compare the engine with it.
if(TARGET kestan_model)
  return()
endif()
set(model ${CMAKE_CURRENT_LIST_DIR})
add_library(kestan_model STATIC
  ${model}/clock.cc
  ${model}/indexing.cc
  ${model}/lifecycle.cc
  ${model}/listing.cc
  ${model}/query.cc
  ${model}/side_records.cc
  ${model}/store.cc
  ${model}/strip.cc
  ${model}/units.cc
  ${model}/world.cc)
target_include_directories(kestan_model PUBLIC ${PROJECT_SOURCE_DIR} ${GDBM_INCLUDE_DIR})
target_link_libraries(kestan_model PUBLIC
  kestan_static kestan_options ${GDBM_LIBRARY} GTest::gtest rapidcheck)
