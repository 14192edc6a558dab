# vexor_controller_library(TARGET OBJECTS): one of our own controllers as a libhxraid.so of those
# objects.
#
# The soname has no version because it is the vendor's, whose library can replace this one. Only the
# functions of hxraid.h are exported. Like the vendor's library it is loaded into PHP and into
# daemons, so exceptions never leave it and the C++ runtime is linked statically.
function(vexor_controller_library target objects)
    set(exports "${PROJECT_SOURCE_DIR}/controllers/hxraid.map")
    add_library(${target} SHARED "${PROJECT_SOURCE_DIR}/controllers/library/unload.cpp")
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME hxraid
        LINKER_LANGUAGE CXX
        LINK_DEPENDS "${exports}")
    target_link_options(${target} PRIVATE
        "LINKER:--version-script=${exports}" "LINKER:--exclude-libs,ALL"
        # clang links libm along with the static C++ runtime even if nothing uses it.
        "LINKER:--as-needed" -static-libgcc -static-libstdc++)
    target_link_libraries(${target}
        PUBLIC hxraid_interface
        PRIVATE ${objects} vexor_hardening)
endfunction()
