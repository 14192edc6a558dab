# VEXORAPI_COVERAGE puts counters into the run-time code, for scripts/coverage. Only into it: tests and
# tools with counters would take as long again to compile, and nobody reads theirs.
option(VEXORAPI_COVERAGE "Count which lines and branches of backend/ and controllers/ are reached" OFF)

if(VEXORAPI_COVERAGE)
    add_link_options(--coverage)
endif()

# vexor_counted(DIRECTORY...): the targets of these folders have counters.
function(vexor_counted)
    if(NOT VEXORAPI_COVERAGE)
        return()
    endif()
    foreach(directory IN LISTS ARGN)
        get_property(targets DIRECTORY "${directory}" PROPERTY BUILDSYSTEM_TARGETS)
        foreach(target IN LISTS targets)
            get_target_property(type ${target} TYPE)
            if(type MATCHES "^(OBJECT|STATIC)_LIBRARY$")
                target_compile_options(${target} PRIVATE --coverage)
            endif()
        endforeach()
    endforeach()
endfunction()
