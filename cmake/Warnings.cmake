# vexor_warnings: the warnings that every target of ours is built with.
# VEXORAPI_WERROR makes them errors. Every preset turns it on; it is off for whoever merely builds
# the library, perhaps with a compiler that knows more warnings than ours.
option(VEXORAPI_WERROR "Treat compiler warnings as errors" OFF)

add_library(vexor_warnings INTERFACE)
# clang counts -Wsign-conversion into -Wconversion and g++ does not: named, both say the same.
target_compile_options(vexor_warnings INTERFACE
    -Wall -Wextra -Wconversion -Wshadow -Wsign-conversion
    # g++ 12 sees overlaps in std::string's operator+ that are not there.
    $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>
    $<$<BOOL:${VEXORAPI_WERROR}>:-Werror>)
