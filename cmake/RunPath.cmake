# vexor_run_path(TARGET [BUILD folder...] [INSTALL folder...] [DESTINATION folder] [COMPONENT name]):
# sets the library search paths of the built and of the installed file. Call it after the target's
# install(TARGETS), with the same component.
#
# CMake's build run paths end in a colon when the installed path differs, and an empty entry means
# the current folder: a program of the build tree started in another user's folder would load
# libraries from there. So CMake is told that the path does not change, and it is replaced after the
# installation by the command that CMake's own scripts use. The new path must not be longer than the
# old one, which is padded with "/.". A target without its own path still needs this call, for the
# 32-bit build's folder of libraries.
function(vexor_run_path target)
    cmake_parse_arguments(PARSE_ARGV 1 run_path "" "DESTINATION;COMPONENT" "BUILD;INSTALL")
    list(JOIN run_path_INSTALL ":" installed)
    list(JOIN run_path_BUILD ":" built)
    # Libraries in a separate folder, such as the 32-bit ones.
    get_filename_component(expat_folder "${EXPAT_LIBRARY}" DIRECTORY)
    if(NOT expat_folder IN_LIST CMAKE_C_IMPLICIT_LINK_DIRECTORIES)
        if(NOT built STREQUAL "")
            string(APPEND built ":")
        endif()
        string(APPEND built "${expat_folder}")
    endif()
    string(LENGTH "${installed}" enough)
    string(LENGTH "${built}" length)
    while(length LESS enough)
        string(APPEND built "/.")
        string(LENGTH "${built}" length)
    endwhile()
    string(REPLACE ":" ";" built_folders "${built}")
    set_target_properties(${target} PROPERTIES
        BUILD_WITH_INSTALL_RPATH ON
        INSTALL_RPATH "${built_folders}")

    if(NOT run_path_DESTINATION OR built STREQUAL "")
        return()
    endif()
    set(folder "${run_path_DESTINATION}")
    if(NOT IS_ABSOLUTE "${folder}")
        string(PREPEND folder "\${CMAKE_INSTALL_PREFIX}/")
    endif()
    set(file "\$ENV{DESTDIR}${folder}/$<TARGET_FILE_NAME:${target}>")
    if(installed STREQUAL "")
        install(CODE "file(RPATH_REMOVE FILE \"${file}\")" COMPONENT "${run_path_COMPONENT}")
    else()
        install(CODE "file(RPATH_CHANGE
            FILE \"${file}\"
            OLD_RPATH [==[${built}]==]
            NEW_RPATH [==[${installed}]==])" COMPONENT "${run_path_COMPONENT}")
    endif()
endfunction()

# vexor_run_path_to_library(PROGRAM FOLDER COMPONENT): for a program installed in the BINDIR or
# SBINDIR. It finds the library relative to itself, in the build folder and where both are installed.
function(vexor_run_path_to_library program folder component)
    file(RELATIVE_PATH library_folder
        "${CMAKE_INSTALL_FULL_${folder}}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    vexor_run_path(${program} BUILD "$ORIGIN/../lib" INSTALL "$ORIGIN/${library_folder}"
        DESTINATION "${CMAKE_INSTALL_${folder}}" COMPONENT ${component})
endfunction()
