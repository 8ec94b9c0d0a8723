# What every target of the tree shares: the language, the warnings, and the ways to add a library or a test.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# Most of the time of each source goes into the headers that its neighbours include too.
set(CMAKE_UNITY_BUILD ${ZEM_TOGETHER})
set(CMAKE_UNITY_BUILD_BATCH_SIZE 12)
# Libraries are looked for from where a program lies, never from the folder in which it is started.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

add_library(zem_options INTERFACE)
target_compile_options(zem_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
target_include_directories(zem_options INTERFACE ${PROJECT_SOURCE_DIR})
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

# zem_add_test(NAME SOURCES... [LIBS ...]): a GoogleTest program whose cases CTest learns from the program itself.
# CTest's names begin with the folder's, so that `./test db` runs one folder. The program's own sources are not
# optimised: compiling them takes longer than running them, with clang++ and the sanitizers three times as long.
function(zem_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LIBS")
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  target_compile_options(${name} PRIVATE -O0)
  set_target_properties(${name} PROPERTIES ZEM_UNOPTIMISED ON)
  target_link_libraries(${name} PRIVATE zem_options ${arg_LIBS} GTest::gmock_main)
  zem_read_googletest_once(${name})
  zem_tests_need(${name})
  cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME folder)
  gtest_discover_tests(${name} TEST_PREFIX ${folder}. DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
endfunction()

# Where sources are compiled one by one, GoogleTest's headers are read once for all of them. They belong to a program that
# does nothing, since the compiler takes them only where all options and definitions of the owner are the user's too.
function(zem_read_googletest_once test)
  if(ZEM_TOGETHER)
    return()
  endif()
  if(NOT TARGET zem_googletest)
    file(WRITE ${PROJECT_BINARY_DIR}/googletest.cpp "int main() {}\n")
    add_executable(zem_googletest EXCLUDE_FROM_ALL ${PROJECT_BINARY_DIR}/googletest.cpp)
    target_compile_options(zem_googletest PRIVATE -O0 -fpch-preprocess)
    set_target_properties(zem_googletest PROPERTIES ZEM_UNOPTIMISED ON)
    target_link_libraries(zem_googletest PRIVATE zem_options GTest::gmock)
    target_precompile_headers(zem_googletest PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
  endif()
  target_precompile_headers(${test} REUSE_FROM zem_googletest)
  target_compile_options(${test} PRIVATE -fpch-preprocess)  # ccache asks for it
endfunction()

# Once for all folders of tests: GTest::gmock_main and its like.
macro(zem_find_googletest)
  include(GoogleTest)
  if(ZEM_GOOGLETEST_SOURCES)
    set(INSTALL_GTEST OFF)
    add_subdirectory(${ZEM_GOOGLETEST_SOURCES} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  else()
    find_package(GTest REQUIRED)
  endif()
endmacro()
