# How a component becomes a library, a program or a test.

# Tests that would show nothing new to a sanitizer are left out of a sanitized build. An instrumented
# build is sanitized or measures coverage; it is not for users.
set(MLK_SANITIZED OFF)
set(MLK_INSTRUMENTED OFF)
if(CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    set(MLK_SANITIZED ON)
endif()
if(MLK_SANITIZED OR CMAKE_CXX_FLAGS MATCHES "-fprofile")
    set(MLK_INSTRUMENTED ON)
endif()

# Our own code must compile without a warning. Generated code is exempt.
add_library(mlk_warnings INTERFACE)
target_compile_options(mlk_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)

# Debian keeps the Android libraries in folders of their own.
set(ANDROID_LIBRARY_DIR /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android)
foreach(part log cutils utils base)
    find_library(ANDROID_LIB${part} ${part} PATHS ${ANDROID_LIBRARY_DIR} NO_DEFAULT_PATH REQUIRED)
    add_library(android_${part} INTERFACE)
    target_include_directories(android_${part} SYSTEM INTERFACE /usr/include/android)
    target_link_libraries(android_${part} INTERFACE ${ANDROID_LIB${part}})
endforeach()
list(APPEND CMAKE_BUILD_RPATH ${ANDROID_LIBRARY_DIR})

find_package(Threads REQUIRED)
if(BUILD_TESTING)
    find_package(GTest REQUIRED)
    include(GoogleTest)
    # The environment of every test. CTest reads this file before it runs the tests; the ENVIRONMENT
    # property does not survive the discovery of GoogleTest's tests.
    file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/TestEnvironment.cmake CONTENT [[
set(ENV{MLK_BIN_DIR} "@CMAKE_BINARY_DIR@/bin")
set(ENV{MLK_SOURCE_DIR} "@CMAKE_SOURCE_DIR@")
set(ENV{TSAN_OPTIONS} "suppressions=@CMAKE_SOURCE_DIR@/cmake/tsan.supp:$ENV{TSAN_OPTIONS}")
]] @ONLY)
    set_property(DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY
                 TEST_INCLUDE_FILES ${CMAKE_BINARY_DIR}/TestEnvironment.cmake)

    # Most of a build's time goes into the tests, and half of that into GoogleTest's headers.
    # Therefore the tests themselves are not optimised, only the code under test is, and GoogleTest's
    # headers are precompiled. A compiler cache makes precompiled headers needless and cannot cache
    # what uses them. The release uses neither, so that each test has to include what it uses.
    add_library(mlk_test_options INTERFACE)
    if(NOT CMAKE_BUILD_TYPE STREQUAL Release)
        target_compile_options(mlk_test_options INTERFACE -O0)
        if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
            file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/TestHeaders.cpp CONTENT "int main() {}\n")
            # A program, as the tests are: a library has other flags.
            add_executable(mlk_test_headers ${CMAKE_BINARY_DIR}/TestHeaders.cpp)
            target_link_libraries(mlk_test_headers PRIVATE mlk_test_options GTest::gmock
                                  GTest::gtest_main mlk_warnings)
            set_target_properties(mlk_test_headers PROPERTIES
                RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
            target_precompile_headers(mlk_test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
        endif()
    endif()
endif()

# mlk_library(NAME SOURCES... [PUBLIC LIBS...] [PRIVATE LIBS...])
# A static library of our own code. Its headers are included by the name of their folder:
# "projectconfigs/ProjectParser.h".
function(mlk_library name)
    cmake_parse_arguments(ARG "" "" "PUBLIC;PRIVATE" ${ARGN})
    add_library(${name} STATIC ${ARG_UNPARSED_ARGUMENTS})
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE} mlk_warnings)
endfunction()

# mlk_fast(SOURCES...)
# Builds these sources for speed: every line of a file or every call goes through them. The rest of
# a release is built for size, because most of the service's memory is its program.
function(mlk_fast)
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS "$<$<CONFIG:Release>:-O3>")
endfunction()

# mlk_unoptimised(SOURCES...)
# Builds these sources without optimisation, except in a release: most of their compile time goes
# into the templates of the libraries that read command lines, JSON and TOML, and they run once a
# command.
function(mlk_unoptimised)
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS "$<$<NOT:$<CONFIG:Release>>:-O0>")
endfunction()

# mlk_program(NAME SOURCES... LIBS libs...)
# A program in build/<preset>/bin.
function(mlk_program name)
    cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
    add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE ${ARG_LIBS} mlk_warnings)
endfunction()

# mlk_test(NAME SOURCES... LIBS libs... [NEEDS programs...] [TIMEOUT SECONDS] [NO_RACES])
# One GoogleTest program. Each of its tests is a CTest test, so that they run in parallel.
# NEEDS names programs that the test starts: they are built first, and MLK_BIN_DIR in the test's
# environment is the folder that holds them. NO_RACES leaves the program out of the thread sanitizer's
# build: it starts no threads, or only those that another test starts as well.
function(mlk_test name)
    cmake_parse_arguments(ARG "NO_RACES" "TIMEOUT" "LIBS;NEEDS" ${ARGN})
    if(NOT BUILD_TESTING OR (ARG_NO_RACES AND CMAKE_CXX_FLAGS MATCHES "-fsanitize=thread"))
        return()
    endif()
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    target_link_libraries(${name} PRIVATE ${ARG_LIBS} host_testing GTest::gmock GTest::gtest_main
                          mlk_warnings mlk_test_options)
    if(TARGET mlk_test_headers)
        target_precompile_headers(${name} REUSE_FROM mlk_test_headers)
    endif()
    if(ARG_NEEDS)
        add_dependencies(${name} ${ARG_NEEDS})
    endif()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 DISCOVERY_MODE PRE_TEST PROPERTIES
        TIMEOUT ${ARG_TIMEOUT})
endfunction()
