# Settings that every target shares, and the two functions that declare rooms and their tests.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# As fast as -O3 here, and a good deal faster to build.
string(REPLACE "-O3" "-O2" CMAKE_CXX_FLAGS_RELEASE "${CMAKE_CXX_FLAGS_RELEASE}")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_library(gainsmith_options INTERFACE)
target_compile_options(gainsmith_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Werror
  # 32-bit results must not depend on the processor: no fused multiply-add.
  -ffp-contract=off
  # GCC 12 sees overlapping copies in std::string::insert where there are none.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)

# gainsmith_room(NAME [FOLDER folder] SOURCES files... ROOMS rooms...)
# A room is a static library. Headers are found as "room/file.h", and only those of the rooms named.
# A room inside another's folder says as what its headers are found: FOLDER house/room gives
# "house/room/file.h".
function(gainsmith_room name)
  cmake_parse_arguments(ROOM "" "FOLDER" "SOURCES;ROOMS" ${ARGN})
  if(NOT ROOM_FOLDER)
    set(ROOM_FOLDER ${name})
  endif()
  add_library(${name} STATIC ${ROOM_SOURCES})
  set(include_root ${CMAKE_BINARY_DIR}/include/${name})
  cmake_path(GET ROOM_FOLDER PARENT_PATH parent)
  file(MAKE_DIRECTORY ${include_root}/${parent})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${include_root}/${ROOM_FOLDER} SYMBOLIC)
  target_include_directories(${name} PUBLIC ${include_root})
  target_link_libraries(${name} PUBLIC ${ROOM_ROOMS} PRIVATE gainsmith_options)
endfunction()

# All tests that need no desktop, for the sanitizers.
add_custom_target(room_tests)

# What every test includes, compiled once.
add_library(test_prelude OBJECT EXCLUDE_FROM_ALL ${CMAKE_CURRENT_LIST_DIR}/test_prelude.cpp)
target_link_libraries(test_prelude PRIVATE gainsmith_options GTest::gtest)
target_precompile_headers(test_prelude PRIVATE
  <gtest/gtest.h> <functional> <map> <string> <vector>)

# gainsmith_test(NAME LABEL label SOURCES files... ROOMS rooms...)
# One program and one CTest entry for a room's tests.
function(gainsmith_test name)
  cmake_parse_arguments(TEST "" "LABEL" "SOURCES;ROOMS" ${ARGN})
  add_executable(${name} ${TEST_SOURCES})
  target_link_libraries(${name} PRIVATE ${TEST_ROOMS} gainsmith_options GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS ${TEST_LABEL} TIMEOUT 300)
  if(NOT TEST_LABEL STREQUAL desktop)
    target_precompile_headers(${name} REUSE_FROM test_prelude)
    add_dependencies(room_tests ${name})
  endif()
endfunction()
