# vexor_precompiled(TARGET): precompiles the standard headers that most sources use. Reading them
# takes a compiler three quarters of a second, most of the time of a small source. Only standard
# headers, so that a change of our own headers recompiles only the sources that include them.
#
# A source still includes all that it uses: the preset tidy builds without this and notices missing
# includes.
function(vexor_precompiled target)
    target_precompile_headers(${target} PRIVATE
        <algorithm> <array> <bit> <charconv> <cstddef> <cstdint> <cstdio> <cstdlib> <cstring>
        <functional> <iterator> <map> <memory> <optional> <set> <span> <stdexcept> <string>
        <string_view> <tuple> <utility> <vector>)
endfunction()

# Without this clang stores the time in such a header, so that sources that use it would miss in
# ccache.
add_compile_options("$<$<COMPILE_LANG_AND_ID:CXX,Clang>:SHELL:-Xclang -fno-pch-timestamp>")
