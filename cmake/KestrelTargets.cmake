# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
#
# The ways in which targets are declared here: the library of a room, the library of a room of windows, a test program.

# Flags of every target: the language level, and what the presets switch on.
add_library(kestrel_flags INTERFACE)
target_compile_features(kestrel_flags INTERFACE cxx_std_20)
target_include_directories(kestrel_flags INTERFACE ${PROJECT_SOURCE_DIR})
# No multiply-add contraction: results must not depend on the processor they were computed on.
target_compile_options(kestrel_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
                                               -Wold-style-cast -Woverloaded-virtual -ffp-contract=off)
if(KESTREL_WARNINGS_AS_ERRORS)
  target_compile_options(kestrel_flags INTERFACE -Werror)
endif()
if(KESTREL_SANITIZE)
  target_compile_options(kestrel_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined
                                                 -fno-omit-frame-pointer)
  target_link_options(kestrel_flags INTERFACE -fsanitize=address,undefined)
endif()

option(KESTREL_JOIN_SOURCES "Compile several sources as one where what they include takes most of the time" ON)

# kestrel_join_sources(<name>) compiles twelve sources of a target as one, so that they share what they include and what
# they make of its templates.
function(kestrel_join_sources name)
  set_target_properties(${name} PROPERTIES UNITY_BUILD ${KESTREL_JOIN_SOURCES} UNITY_BUILD_BATCH_SIZE 12)
endfunction()

# kestrel_library(<name> SOURCES <file>... [DEPENDS <target>...] [PRIVATE_DEPENDS <target>...])
function(kestrel_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;DEPENDS;PRIVATE_DEPENDS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_EXTENSIONS OFF)
  target_link_libraries(${name} PUBLIC kestrel_flags ${arg_DEPENDS} PRIVATE ${arg_PRIVATE_DEPENDS})
endfunction()

# kestrel_forms_library(<name> ...) is a kestrel_library() of windows, which link Qt Widgets.
function(kestrel_forms_library name)
  kestrel_library(${name} ${ARGN})
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
  target_link_libraries(${name} PUBLIC Qt::Widgets)
endfunction()

# Sources of tests are compiled quickly: they run for milliseconds, and spent half of the build in the optimiser. What
# they are compared with (tests/support, tests/real) is optimised like the program.
add_library(kestrel_test_flags INTERFACE)
target_link_libraries(kestrel_test_flags INTERFACE kestrel_flags)
target_compile_options(kestrel_test_flags INTERFACE -O0 -g1)
# Joined sources outgrow the heap that GCC takes before it collects garbage, again and again.
target_compile_options(kestrel_test_flags INTERFACE
  $<$<CXX_COMPILER_ID:GNU>:--param=ggc-min-expand=300 --param=ggc-min-heapsize=1000000>)
# Libraries that a test program does not call are not loaded at each of its starts.
target_link_options(kestrel_test_flags INTERFACE -Wl,--as-needed)

# kestrel_test_headers(<name> HEADERS <header>... [DEPENDS <target>...]) makes the headers that all sources of some test
# programs begin with, compiled once. The programs name it as PRECOMPILED.
function(kestrel_test_headers name)
  cmake_parse_arguments(arg "" "" "HEADERS;DEPENDS" ${ARGN})
  add_library(${name} OBJECT ${PROJECT_SOURCE_DIR}/tests/support/precompiled.cpp)
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
  target_link_libraries(${name} PRIVATE kestrel_test_flags GTest::gtest GTest::gmock ${arg_DEPENDS})
  target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
endfunction()

# kestrel_test_program(<name> SOURCES <file>... [ALONE <file>...] DEPENDS <target>... [PRECOMPILED <target>])
# Its sources are joined; those after ALONE, which have names of their own for what others call the same, are not.
function(kestrel_test_program name)
  cmake_parse_arguments(arg "" "PRECOMPILED" "SOURCES;ALONE;DEPENDS" ${ARGN})
  add_executable(${name} ${arg_SOURCES} ${arg_ALONE})
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
  kestrel_join_sources(${name})
  set_source_files_properties(${arg_ALONE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  target_link_libraries(${name} PRIVATE kestrel_test_flags kestrel_test_support ${arg_DEPENDS} GTest::gtest GTest::gmock)
  target_compile_definitions(${name} PRIVATE KESTREL_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  if(arg_PRECOMPILED)
    target_precompile_headers(${name} REUSE_FROM ${arg_PRECOMPILED})
  endif()
endfunction()

# kestrel_add_suites(<program> SOURCES <file>... LABELS <label>... [ENVIRONMENT <variable>...])
# Every suite of a program becomes a ctest entry. A program loads for a tenth of a second, longer than most cases take; so
# they are not entries of their own. An entry is reported as skipped when all of its cases were.
function(kestrel_add_suites program)
  cmake_parse_arguments(arg "" "" "SOURCES;LABELS;ENVIRONMENT" ${ARGN})
  set(suites)
  foreach(source IN LISTS arg_SOURCES)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
    file(STRINGS ${source} cases REGEX "^TEST(_F|_P)?\\(")
    list(TRANSFORM cases REPLACE "^TEST(_F|_P)?\\(([A-Za-z0-9_]+),.*" "\\2")
    list(APPEND suites ${cases})
  endforeach()
  list(REMOVE_DUPLICATES suites)
  foreach(suite IN LISTS suites)
    add_test(NAME ${suite} COMMAND ${program} "--gtest_filter=${suite}.*:*/${suite}.*")
    set_tests_properties(${suite} PROPERTIES LABELS "${arg_LABELS}" TIMEOUT 300 ENVIRONMENT "${arg_ENVIRONMENT}"
      FAIL_REGULAR_EXPRESSION "Running 0 tests"
      SKIP_REGULAR_EXPRESSION "PASSED  . 0 tests[.]\n.  SKIPPED . [0-9]+ tests?, listed below:\n(.  SKIPPED . [^\n]*\n)+$")
  endforeach()
endfunction()

# kestrel_test(<name> SOURCES <file>... [ALONE <file>...] [DEPENDS <target>...] [LABELS <label>...])
function(kestrel_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;ALONE;DEPENDS;LABELS" ${ARGN})
  kestrel_test_program(${name} SOURCES ${arg_SOURCES} ALONE ${arg_ALONE} DEPENDS ${arg_DEPENDS} GTest::gtest_main
                       PRECOMPILED kestrel_test_headers)
  kestrel_add_suites(${name} SOURCES ${arg_SOURCES} ${arg_ALONE} LABELS ${arg_LABELS})
endfunction()

# kestrel_forms_test(<name> SOURCES <file>... [ALONE <file>...] [DEPENDS <target>...] [LABELS <label>...] [EACH_CASE])
# A kestrel_test() of windows: without a screen, with a main() of its own that makes the QApplication. With EACH_CASE every
# case is an entry of its own: for cases that need a process which nothing has happened in.
function(kestrel_forms_test name)
  cmake_parse_arguments(arg "EACH_CASE" "" "SOURCES;ALONE;DEPENDS;LABELS" ${ARGN})
  kestrel_test_program(${name} SOURCES ${arg_SOURCES} ALONE ${arg_ALONE}
                       DEPENDS kestrel_forms_test_support ${arg_DEPENDS} Qt::Widgets Qt::Test
                       PRECOMPILED kestrel_forms_test_headers)
  if(arg_EACH_CASE)
    gtest_discover_tests(${name} PROPERTIES LABELS "${arg_LABELS}" TIMEOUT 300 ENVIRONMENT QT_QPA_PLATFORM=offscreen
                         DISCOVERY_TIMEOUT 120)
  else()
    kestrel_add_suites(${name} SOURCES ${arg_SOURCES} ${arg_ALONE} LABELS ${arg_LABELS}
                       ENVIRONMENT QT_QPA_PLATFORM=offscreen)
  endif()
endfunction()
