# vexor_run_path(TARGET [BUILD folder...] [INSTALL folder...] [DESTINATION folder]): where the built and
# the installed file of the target look for their libraries. Comes behind the target's install(TARGETS).
#
# CMake's own build run paths end in a colon whenever the path is another one when it is installed, and
# an empty entry means the current folder: whoever starts a program of the build tree in a folder of
# somebody else's would load the libraries that lie there. So CMake is told that the path stays, and it
# is exchanged behind the installation, by the command that CMake's own scripts exchange it with. The
# new path must not be longer than the old one, which is made long enough with "/.". A target that needs
# no path of its own still comes here, for the 32-bit build's folder of libraries.
function(vexor_run_path target)
    cmake_parse_arguments(PARSE_ARGV 1 run_path "" "DESTINATION" "BUILD;INSTALL")
    list(JOIN run_path_INSTALL ":" installed)
    list(JOIN run_path_BUILD ":" built)
    # Libraries from a folder of their own, as the 32-bit ones.
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
        install(CODE "file(RPATH_REMOVE FILE \"${file}\")")
    else()
        install(CODE "file(RPATH_CHANGE
            FILE \"${file}\"
            OLD_RPATH [==[${built}]==]
            NEW_RPATH [==[${installed}]==])")
    endif()
endfunction()
