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

# A program loads the libraries whose names it uses, and no others.
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  add_link_options(LINKER:--as-needed)
endif()

# Whatever reads or writes where it must not, divides by zero, or overflows ends the program. The
# rooms are watched most closely; what the fuzzers follow through them costs the tests little.
if(GAINSMITH_SANITIZERS)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

add_library(gainsmith_options INTERFACE)
target_compile_options(gainsmith_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Werror
  # 32-bit results must not depend on the processor: no fused multiply-add.
  -ffp-contract=off
  # GCC 12 sees overlapping copies in std::string::insert where there are none.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)

# What most rooms include, compiled once: the second build of the check gains a third of its time by
# it. The others see that each file includes what it needs.
if(GAINSMITH_SANITIZERS)
  add_library(room_prelude OBJECT EXCLUDE_FROM_ALL ${CMAKE_CURRENT_LIST_DIR}/prelude.cpp)
  target_link_libraries(room_prelude PRIVATE gainsmith_options)
  target_precompile_headers(room_prelude PRIVATE
    <algorithm> <array> <cmath> <functional> <memory> <optional> <span> <string> <vector>)
endif()

# gainsmith_room(NAME [QT] [FOLDER folder] SOURCES files... ROOMS rooms...)
# A room is a static library. Headers are found as "room/file.h", and only those of the rooms named.
# A room that knows Qt says QT. A room inside another's folder says as what its headers are found:
# FOLDER house/room gives "house/room/file.h".
function(gainsmith_room name)
  cmake_parse_arguments(ROOM "QT" "FOLDER" "SOURCES;ROOMS" ${ARGN})
  if(NOT ROOM_FOLDER)
    set(ROOM_FOLDER ${name})
  endif()
  add_library(${name} STATIC ${ROOM_SOURCES})
  # For the static checks and the sanitizers: most of their time goes into headers.
  if(GAINSMITH_ROOMS_AS_ONE)
    set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0
      UNITY_BUILD_CODE_BEFORE_INCLUDE "// NOLINTNEXTLINE(bugprone-suspicious-include)")
  endif()
  set(include_root ${CMAKE_BINARY_DIR}/include/${name})
  cmake_path(GET ROOM_FOLDER PARENT_PATH parent)
  file(MAKE_DIRECTORY ${include_root}/${parent})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${include_root}/${ROOM_FOLDER} SYMBOLIC)
  target_include_directories(${name} PUBLIC ${include_root})
  target_link_libraries(${name} PUBLIC ${ROOM_ROOMS} PRIVATE gainsmith_options)
  # Qt's definitions are not those under which the shared headers were compiled.
  if(GAINSMITH_SANITIZERS AND NOT ROOM_QT)
    target_precompile_headers(${name} REUSE_FROM room_prelude)
  endif()
endfunction()

# All tests that need no desktop and no other program, for the sanitizers.
add_custom_target(room_tests)

# The tests' own sources. Under the sanitizers they are built as fast as can be: what is watched is
# the rooms.
add_library(test_options INTERFACE)
target_link_libraries(test_options INTERFACE gainsmith_options GTest::gtest)
if(GAINSMITH_SANITIZERS)
  target_compile_options(test_options INTERFACE
    -O0 -fno-sanitize=undefined,fuzzer-no-link)
endif()

# What every test includes, compiled once.
add_library(test_prelude OBJECT EXCLUDE_FROM_ALL ${CMAKE_CURRENT_LIST_DIR}/prelude.cpp)
target_link_libraries(test_prelude PRIVATE test_options)
target_precompile_headers(test_prelude PRIVATE
  <gtest/gtest.h> <functional> <map> <string> <vector>)

# gainsmith_test(NAME LABEL label SOURCES files... ROOMS rooms...)
# One program and one CTest entry for a room's tests.
function(gainsmith_test name)
  cmake_parse_arguments(TEST "" "LABEL" "SOURCES;ROOMS" ${ARGN})
  add_executable(${name} ${TEST_SOURCES})
  target_link_libraries(${name} PRIVATE ${TEST_ROOMS} test_options GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS ${TEST_LABEL} TIMEOUT 300)
  if(NOT TEST_LABEL MATCHES "desktop|console")
    target_precompile_headers(${name} REUSE_FROM test_prelude)
    add_dependencies(room_tests ${name})
  endif()
endfunction()
