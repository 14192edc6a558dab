# vexor_precompiled(TARGET): the standard headers that most sources read are compiled once for the
# target. Reading them takes a compiler three quarters of a second, which is most of what a small
# source costs. Standard headers alone: a change of one of ours compiles only what includes it.
#
# A source still includes all that it uses. The preset tidy builds without this, and tells.
function(vexor_precompiled target)
    target_precompile_headers(${target} PRIVATE
        <algorithm> <array> <bit> <charconv> <cstddef> <cstdint> <cstdio> <cstdlib> <cstring>
        <functional> <iterator> <map> <memory> <optional> <set> <span> <stdexcept> <string>
        <string_view> <tuple> <utility> <vector>)
endfunction()

# clang puts the time into such a header, and whatever uses it would miss ccache.
add_compile_options("$<$<COMPILE_LANG_AND_ID:CXX,Clang>:SHELL:-Xclang -fno-pch-timestamp>")
