# Compiles HIDL packages at build time.

find_program(HIDL_GEN hidl-gen REQUIRED)

# mlk_hidl_generate(PREFIX PACKAGE ROOTS root:path... SOURCES generated... HALS files...)
# Compiles PACKAGE (name@version). Sets PREFIX_SOURCES to the generated sources and PREFIX_INCLUDE to
# the folder of their headers. SOURCES are the .cpp files that the compiler writes, without their
# folder; HALS are the files it reads. ROOTS are package roots with their folders relative to the
# source tree. The generated code is exempt from our warnings.
function(mlk_hidl_generate prefix package)
    cmake_parse_arguments(ARG "" "" "ROOTS;SOURCES;HALS" ${ARGN})
    string(REGEX REPLACE "[.@]" "/" folder ${package})
    string(REGEX REPLACE "/([0-9]+)/([0-9]+)$" "/\\1.\\2" folder ${folder})
    set(out ${CMAKE_CURRENT_BINARY_DIR}/hidl/${prefix})
    # Named so that what includes them is compiled again in the build that writes them anew.
    set(headers)
    foreach(source ${ARG_SOURCES})
        if(source STREQUAL types.cpp)
            list(APPEND headers types.h hwtypes.h)
        else()
            string(REPLACE "All.cpp" "" interface ${source})
            list(APPEND headers I${interface}.h IHw${interface}.h BnHw${interface}.h
                 BpHw${interface}.h Bs${interface}.h)
        endif()
    endforeach()
    list(TRANSFORM headers PREPEND ${out}/${folder}/)
    list(TRANSFORM ARG_SOURCES PREPEND ${out}/${folder}/)
    list(TRANSFORM ARG_HALS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    set(roots)
    foreach(root ${ARG_ROOTS})
        list(APPEND roots -r ${root})
    endforeach()
    add_custom_command(
        OUTPUT ${ARG_SOURCES}
        BYPRODUCTS ${headers}
        COMMAND ${HIDL_GEN} -R -p ${CMAKE_SOURCE_DIR} -o ${out} -L c++ ${roots} ${package}
        COMMAND ${CMAKE_COMMAND} -DFOLDER=${out}/${folder} -P ${CMAKE_SOURCE_DIR}/cmake/HidlRepair.cmake
        DEPENDS ${ARG_HALS} ${CMAKE_SOURCE_DIR}/cmake/HidlRepair.cmake
        COMMENT "Compiling ${package}"
        VERBATIM)
    # Structs travel as raw memory: a client may send any byte for a bool or an enumerator, and
    # generated code passes it on, as it does on a device. With a sanitizer, optimising takes a minute.
    set_source_files_properties(${ARG_SOURCES} PROPERTIES
        COMPILE_OPTIONS "-w;-fno-sanitize=bool,enum;$<$<NOT:$<CONFIG:Release>>:-O0>")
    set(${prefix}_SOURCES ${ARG_SOURCES} PARENT_SCOPE)
    set(${prefix}_INCLUDE ${out} PARENT_SCOPE)
endfunction()

# mlk_hidl_package(TARGET PACKAGE ... [LIBS libs...])
# Library TARGET with the generated code of PACKAGE. The other arguments are those of
# mlk_hidl_generate.
function(mlk_hidl_package target package)
    cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
    mlk_hidl_generate(${target} ${package} ${ARG_UNPARSED_ARGUMENTS})
    add_library(${target} STATIC ${${target}_SOURCES})
    target_include_directories(${target} SYSTEM PUBLIC ${${target}_INCLUDE})
    target_link_libraries(${target} PUBLIC ${ARG_LIBS})
endfunction()
