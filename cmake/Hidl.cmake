# Compiles HIDL packages at build time.

find_program(HIDL_GEN hidl-gen REQUIRED)

# mlk_hidl_package(TARGET PACKAGE ROOTS root:path... SOURCES generated... HALS files...
#                  [LIBS libs...])
# Library TARGET with the generated code of PACKAGE (name@version). SOURCES are the .cpp files
# that the compiler writes, without their folder; HALS are the files it reads. ROOTS are package
# roots with their folders relative to the source tree.
function(mlk_hidl_package target package)
    cmake_parse_arguments(ARG "" "" "ROOTS;SOURCES;HALS;LIBS" ${ARGN})
    string(REGEX REPLACE "[.@]" "/" folder ${package})
    string(REGEX REPLACE "/([0-9]+)/([0-9]+)$" "/\\1.\\2" folder ${folder})
    set(out ${CMAKE_CURRENT_BINARY_DIR}/hidl/${target})
    list(TRANSFORM ARG_SOURCES PREPEND ${out}/${folder}/)
    list(TRANSFORM ARG_HALS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    set(roots)
    foreach(root ${ARG_ROOTS})
        list(APPEND roots -r ${root})
    endforeach()
    add_custom_command(
        OUTPUT ${ARG_SOURCES}
        COMMAND ${HIDL_GEN} -R -p ${CMAKE_SOURCE_DIR} -o ${out} -L c++ ${roots} ${package}
        COMMAND ${CMAKE_COMMAND} -DFOLDER=${out}/${folder} -P ${CMAKE_SOURCE_DIR}/cmake/HidlRepair.cmake
        DEPENDS ${ARG_HALS} ${CMAKE_SOURCE_DIR}/cmake/HidlRepair.cmake
        COMMENT "Compiling ${package}"
        VERBATIM)
    add_library(${target} STATIC ${ARG_SOURCES})
    target_include_directories(${target} SYSTEM PUBLIC ${out})
    target_compile_options(${target} PRIVATE -w)
    target_link_libraries(${target} PUBLIC ${ARG_LIBS})
endfunction()
