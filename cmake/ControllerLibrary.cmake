# vexor_controller_library(TARGET OBJECTS DESTINATION): one of our own controllers as a libhxraid.so of
# those objects, installed in that folder.
#
# The soname has no version: it is the vendor's, whose library takes this one's place. It exports what
# hxraid.h declares and nothing else. What is thrown inside is caught inside, and the C++ runtime that
# this takes is in the library: it is loaded into PHP and into daemons, as the vendor's library is.
function(vexor_controller_library target objects destination)
    set(exports "${PROJECT_SOURCE_DIR}/controllers/hxraid.map")
    add_library(${target} SHARED "${PROJECT_SOURCE_DIR}/controllers/library/unload.cpp")
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME hxraid
        LINKER_LANGUAGE CXX
        LINK_DEPENDS "${exports}")
    target_link_options(${target} PRIVATE
        "LINKER:--version-script=${exports}" "LINKER:--exclude-libs,ALL"
        # clang names libm beside the static C++ runtime, whether or not anything of it is used.
        "LINKER:--as-needed" -static-libgcc -static-libstdc++)
    target_link_libraries(${target}
        PUBLIC hxraid_interface
        PRIVATE ${objects} vexor_hardening)
    install(TARGETS ${target} LIBRARY DESTINATION "${destination}")
    vexor_run_path(${target} DESTINATION "${destination}")
endfunction()
