# Object files contain no path of the tree's folder, neither in __FILE__ nor in debug information
# (start the debugger in the root of the tree). So with ccache a second build of the same sources
# compiles nothing, even in another folder.
add_compile_options("-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")

# ccache gets paths relative to the tree, and the sloppiness that precompiled headers need. A
# launcher that the user has set is kept.
option(VEXORAPI_CCACHE "Compile through ccache where it is installed" ON)
find_program(CCACHE ccache)
mark_as_advanced(CCACHE)
if(VEXORAPI_CCACHE AND CCACHE AND NOT CMAKE_C_COMPILER_LAUNCHER AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_C_COMPILER_LAUNCHER env "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=1
        CCACHE_SLOPPINESS=pch_defines,time_macros "${CCACHE}")
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_C_COMPILER_LAUNCHER}")
endif()
