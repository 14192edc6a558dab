# The objects do not depend on the folder that the tree stands in: no path of it reaches them, neither
# __FILE__ nor the debugger's names (start the debugger in the root of the tree). So a second build of
# the same sources compiles nothing where ccache is installed, be it in another folder.
add_compile_options("-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")

# ccache reads paths relative to the tree; the sloppiness is what precompiled headers take. Whoever
# names a launcher of his own gets that one.
option(VEXORAPI_CCACHE "Compile through ccache where it is installed" ON)
find_program(CCACHE ccache)
mark_as_advanced(CCACHE)
if(VEXORAPI_CCACHE AND CCACHE AND NOT CMAKE_C_COMPILER_LAUNCHER AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_C_COMPILER_LAUNCHER env "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=1
        CCACHE_SLOPPINESS=pch_defines,time_macros "${CCACHE}")
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_C_COMPILER_LAUNCHER}")
endif()
