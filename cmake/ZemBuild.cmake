# What every target of the tree shares: the language, the warnings, and the ways to add a library or a test.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# Most of the time of each source goes into the headers that its neighbours include too, so the sources of a target are
# compiled in groups. That no source leans on what another of its group includes is for tools/check-includes to find.
set(CMAKE_UNITY_BUILD ON)
set(CMAKE_UNITY_BUILD_BATCH_SIZE 16)
# Libraries are looked for from where a program lies, never from the folder in which it is started.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

add_library(zem_options INTERFACE)
target_compile_options(zem_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
target_include_directories(zem_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(zem_options INTERFACE $<$<CXX_COMPILER_ID:Clang>:-Wreserved-identifier>)
# A source of a group counts as a header, in which a type of an unnamed namespace would be another in each source.
target_compile_options(zem_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
# The compiler looks through its memory for what it can give back, which takes a tenth of its time in groups of this size.
target_compile_options(zem_options INTERFACE
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:--param=ggc-min-heapsize=400000>
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:--param=ggc-min-expand=100>)
# Files, inode numbers and directory entries of large disks, on 32-bit machines too.
target_compile_definitions(zem_options INTERFACE _FILE_OFFSET_BITS=64)

# zem_add_library(NAME SOURCES... [LIBS ...]): a static library of one folder, linked by the plug-in and by tests.
function(zem_add_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LIBS")
  add_library(${name} STATIC ${arg_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PUBLIC zem_options ${arg_LIBS})
endfunction()

# zem_tests_need(TARGET...): what the tests of this folder run. `./test FOLDER` builds tests_FOLDER, and so these alone.
function(zem_tests_need)
  cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME folder)
  if(NOT TARGET tests_${folder})
    add_custom_target(tests_${folder})
  endif()
  add_dependencies(tests_${folder} ${ARGN})
endfunction()

# zem_not_optimised(TARGET): for what runs in tests alone. Compiling its own sources takes longer than running them, with
# clang++ and the sanitizers three times as long. An eighth of that would go into line numbers, which GoogleTest knows itself.
function(zem_not_optimised target)
  target_compile_options(${target} PRIVATE -O0 $<$<CONFIG:RelWithDebInfo>:-g0>)
  set_target_properties(${target} PROPERTIES ZEM_UNOPTIMISED ON)
endfunction()

# zem_add_tool(NAME SOURCES... [LIBS ...]): a program that is run by hand, to write files that are committed. What runs it
# builds it, and clang-tidy reads its sources with all others.
function(zem_add_tool name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LIBS")
  add_executable(${name} EXCLUDE_FROM_ALL ${arg_UNPARSED_ARGUMENTS})
  zem_not_optimised(${name})
  target_link_libraries(${name} PRIVATE zem_options ${arg_LIBS})
endfunction()

# zem_share_googletest(TARGET): GoogleTest's headers, a third of what g++ does for a test, are read once for all programs.
# clang++ reads them too fast for that to gain anything.
function(zem_share_googletest target)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    return()
  endif()
  if(NOT TARGET zem_googletest_headers)
    file(CONFIGURE OUTPUT googletest_headers.cpp CONTENT "")
    add_executable(zem_googletest_headers EXCLUDE_FROM_ALL ${CMAKE_CURRENT_BINARY_DIR}/googletest_headers.cpp)
    zem_not_optimised(zem_googletest_headers)
    target_link_libraries(zem_googletest_headers PRIVATE zem_options GTest::gmock_main)
    target_precompile_headers(zem_googletest_headers PRIVATE <gmock/gmock.h>)
  endif()
  target_precompile_headers(${target} REUSE_FROM zem_googletest_headers)
endfunction()

# zem_add_test(NAME SOURCES... [OPTIMISED] [COST N] [LIBS ...]): a GoogleTest program. CTest's names begin with the folder's,
# so that `./test db` runs one folder. With ZEM_ONCE each case is a test, which can be run by its name; elsewhere a program
# runs in four parts, since to start a process for each case takes longer than the case. OPTIMISED is for one whose own
# sources compute for longer than it takes to optimise them. Parts of a larger COST start earlier: a long one that starts
# last would leave processors idle.
function(zem_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "OPTIMISED" "COST" "LIBS")
  if(NOT arg_COST)
    set(arg_COST 0)
  endif()
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE zem_options ${arg_LIBS} GTest::gmock_main)
  if(arg_OPTIMISED)
    target_compile_options(${name} PRIVATE -O1)
  else()
    zem_not_optimised(${name})
    zem_share_googletest(${name})
  endif()
  zem_tests_need(${name})
  cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME folder)
  if(ZEM_ONCE)
    gtest_discover_tests(${name} TEST_PREFIX ${folder}. DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
    return()
  endif()
  foreach(part RANGE 3)
    add_test(NAME ${folder}.${name}.${part} COMMAND ${name} --gtest_brief=1)
    set_tests_properties(${folder}.${name}.${part} PROPERTIES
      TIMEOUT 600 COST ${arg_COST} ENVIRONMENT "GTEST_TOTAL_SHARDS=4;GTEST_SHARD_INDEX=${part}")
  endforeach()
endfunction()

# Once for all folders of tests: GTest::gmock_main and its like.
macro(zem_find_googletest)
  include(GoogleTest)
  if(ZEM_GOOGLETEST_SOURCES)
    set(INSTALL_GTEST OFF)
    add_subdirectory(${ZEM_GOOGLETEST_SOURCES} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
    foreach(library gtest gmock gmock_main)
      zem_not_optimised(${library})
    endforeach()
  else()
    find_package(GTest REQUIRED)
  endif()
endmacro()
