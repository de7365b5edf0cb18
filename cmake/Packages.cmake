# What is installed, and the Debian packages of it: one package for each command-line tool.

include(GNUInstallDirs)
# An installed program finds the Android libraries where Debian keeps them.
set(CMAKE_INSTALL_RPATH ${ANDROID_LIBRARY_DIR})

# Where Debian's shells look for the completion of NAME.
set(MLK_COMPLETION_bash "bash-completion/completions/NAME")
set(MLK_COMPLETION_zsh "zsh/vendor-completions/_NAME")
set(MLK_COMPLETION_fish "fish/vendor_completions.d/NAME.fish")

# mlk_tool(NAME SUMMARY [SHELLS shells...] [PAGES files...] [DOCUMENTS files...])
# Installs the program NAME of that target: with its manual page, made from its help, and further
# pages, whose paths end with the number of their section (mlktree.toml.5); with the completions that
# `NAME completion SHELL` prints; with documents of the tree. All of it is the component NAME, and a
# package of that name.
function(mlk_tool name summary)
    # An instrumented program is neither installed nor packaged.
    if(MLK_INSTRUMENTED)
        return()
    endif()
    cmake_parse_arguments(ARG "" "" "SHELLS;PAGES;DOCUMENTS" ${ARGN})
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/${name}-installed)
    file(MAKE_DIRECTORY ${folder})

    install(TARGETS ${name} RUNTIME COMPONENT ${name})

    add_custom_command(OUTPUT ${folder}/${name}.1
        COMMAND python3 -B ${CMAKE_SOURCE_DIR}/tools/manpage.py $<TARGET_FILE:${name}>
                > ${folder}/${name}.1
        DEPENDS ${name} ${CMAKE_SOURCE_DIR}/tools/manpage.py
        COMMENT "Writing the manual page of ${name}" VERBATIM)
    set(made "")
    foreach(page ${folder}/${name}.1 ${ARG_PAGES})
        get_filename_component(file ${page} NAME)
        get_filename_component(section ${page} LAST_EXT)
        string(REPLACE . man section ${section})
        set(packed ${folder}/packed/${file}.gz)
        add_custom_command(OUTPUT ${packed}
            COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}/packed
            COMMAND gzip -9nc ${page} > ${packed} DEPENDS ${page} VERBATIM)
        list(APPEND made ${packed})
        install(FILES ${packed} DESTINATION ${CMAKE_INSTALL_MANDIR}/${section} COMPONENT ${name})
    endforeach()

    foreach(shell IN LISTS ARG_SHELLS)
        string(REPLACE NAME ${name} place ${MLK_COMPLETION_${shell}})
        get_filename_component(place_folder ${place} DIRECTORY)
        get_filename_component(file ${place} NAME)
        set(script ${folder}/${shell}/${file})
        add_custom_command(OUTPUT ${script}
            COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}/${shell}
            COMMAND ${name} completion ${shell} > ${script}
            DEPENDS ${name} COMMENT "Writing the completion of ${name} for ${shell}" VERBATIM)
        list(APPEND made ${script})
        install(FILES ${script} DESTINATION ${CMAKE_INSTALL_DATADIR}/${place_folder}
                COMPONENT ${name})
    endforeach()

    foreach(document README.md CHANGELOG.md ${ARG_DOCUMENTS})
        get_filename_component(place ${document} DIRECTORY)
        install(FILES ${CMAKE_SOURCE_DIR}/${document}
                DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}/${place} COMPONENT ${name})
    endforeach()

    add_custom_target(${name}_installed ALL DEPENDS ${made})
    set_property(GLOBAL APPEND PROPERTY MLK_TOOLS ${name})
    set_property(GLOBAL PROPERTY MLK_TOOL_${name} ${summary})
endfunction()

# mlk_packages()
# Declares the packages of all tools, after the last of them.
macro(mlk_packages)
    get_property(CPACK_COMPONENTS_ALL GLOBAL PROPERTY MLK_TOOLS)
    if(CPACK_COMPONENTS_ALL)
        set(CPACK_GENERATOR DEB)
        set(CPACK_DEB_COMPONENT_INSTALL ON)
        set(CPACK_COMPONENTS_GROUPING IGNORE)
        set(CPACK_PACKAGE_CONTACT "The developers of mlkconfigs <mlkconfigs@morlak.example>")
        set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
        set(CPACK_STRIP_FILES ON)
        set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
        set(CPACK_DEBIAN_PACKAGE_SECTION utils)
        # Which packages the programs need is asked of their libraries.
        set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
        foreach(tool ${CPACK_COMPONENTS_ALL})
            string(TOUPPER ${tool} upper)
            get_property(summary GLOBAL PROPERTY MLK_TOOL_${tool})
            set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${tool})
            set(CPACK_COMPONENT_${upper}_DESCRIPTION "${summary}")
        endforeach()
        include(CPack)
    endif()
endmacro()
