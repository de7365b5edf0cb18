# How a source file becomes a fuzzer.

# mlk_fuzzer(NAME SOURCES... LIBS libs...)
# A program that gives inputs to the LLVMFuzzerTestOneInput of SOURCES. With MLK_FUZZ, libFuzzer
# generates them. In every preset the program is also the CTest test fuzz.NAME, which runs the kept
# inputs once:
#   seeds/NAME/         beside the source: written by hand, for odd rules and every bug found
#   fuzz/seeds/NAME/    of the build: made from samples/ and from the trees of mlktree's rules by
#                       tools/fuzz-seeds.sh, and by mlk_fuzz_seeds
# NAME.dict beside the source holds the words of the format. fuzz/NAME.run of the build holds the
# command line for ./test --fuzz.
function(mlk_fuzzer name)
    if(NOT BUILD_TESTING)
        return()
    endif()
    cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
    list(GET ARG_UNPARSED_ARGUMENTS 0 source)
    get_filename_component(folder ${source} DIRECTORY)
    set(folder ${CMAKE_CURRENT_SOURCE_DIR}/${folder})
    add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/fuzz)
    target_link_libraries(${name} PRIVATE ${ARG_LIBS} host_fuzzing host_fuzzing_main mlk_warnings)
    set(once)
    if(MLK_FUZZ)
        set(once -runs=0)
    endif()
    set(made ${CMAKE_BINARY_DIR}/fuzz/seeds/${name})
    file(MAKE_DIRECTORY ${made})
    file(GLOB kept CONFIGURE_DEPENDS ${folder}/seeds/${name})
    set(seeds ${made} ${kept})
    file(GLOB dictionary CONFIGURE_DEPENDS ${folder}/${name}.dict)
    list(TRANSFORM dictionary PREPEND -dict=)
    list(JOIN seeds " " words)
    file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/fuzz/${name}.run
         CONTENT "$<TARGET_FILE:${name}> ${dictionary} ${words}\n")
    add_dependencies(${name} fuzz_seeds)
    add_dependencies(fuzzers ${name})
    add_test(NAME fuzz.${name} COMMAND ${name} ${once} ${seeds})
    set_tests_properties(fuzz.${name} PROPERTIES TIMEOUT 120)
endfunction()

# mlk_fuzz_seeds(FUZZER SOURCES... LIBS libs...)
# A program that writes inputs for the fuzzer into the folder of its argument. The build runs it.
function(mlk_fuzz_seeds fuzzer)
    if(NOT BUILD_TESTING)
        return()
    endif()
    cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
    set(name ${fuzzer}_seeds)
    set(stamp ${CMAKE_CURRENT_BINARY_DIR}/${name}.stamp)
    add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/fuzz)
    target_link_libraries(${name} PRIVATE ${ARG_LIBS} mlk_warnings)
    add_custom_command(
        OUTPUT ${stamp}
        COMMAND ${name} ${CMAKE_BINARY_DIR}/fuzz/seeds/${fuzzer}
        COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
        DEPENDS ${name}
        VERBATIM)
    add_custom_target(${name}_made ALL DEPENDS ${stamp})
    add_dependencies(${fuzzer} ${name}_made)
endfunction()

if(BUILD_TESTING)
    add_custom_target(fuzzers)
    file(GLOB_RECURSE samples CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/samples/partitions/*
         ${CMAKE_SOURCE_DIR}/tools/mlktree/tests/rules/*)
    set(stamp ${CMAKE_BINARY_DIR}/fuzz/seeds.stamp)
    add_custom_command(
        OUTPUT ${stamp}
        COMMAND ${CMAKE_SOURCE_DIR}/tools/fuzz-seeds.sh ${CMAKE_SOURCE_DIR}/samples/partitions
                ${CMAKE_BINARY_DIR}/fuzz/seeds
        COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
        DEPENDS ${CMAKE_SOURCE_DIR}/tools/fuzz-seeds.sh ${samples}
        VERBATIM)
    add_custom_target(fuzz_seeds ALL DEPENDS ${stamp})
endif()
