# vexor_warnings: the warnings for all our targets. VEXORAPI_WERROR makes them errors. Every preset
# turns it on; by default it is off, for users whose compiler may have more warnings than ours.
option(VEXORAPI_WERROR "Treat compiler warnings as errors" OFF)

add_library(vexor_warnings INTERFACE)
# clang includes -Wsign-conversion in -Wconversion and g++ does not; naming it makes them equal.
target_compile_options(vexor_warnings INTERFACE
    -Wall -Wextra -Wconversion -Wshadow -Wsign-conversion
    # g++ 12 falsely reports overlaps in std::string's operator+.
    $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>
    $<$<BOOL:${VEXORAPI_WERROR}>:-Werror>)
