# vexor_hardening: the hardening of all our targets in every build. A test checks its marks in the
# built files.
#
# Sets VEXORAPI_SANITIZED for builds with sanitizers (the presets put -fsanitize= into the compiler
# flags), since what such a build links and exports says nothing about a release.
if("${CMAKE_C_FLAGS} ${CMAKE_CXX_FLAGS}" MATCHES "-fsanitize=")
    set(VEXORAPI_SANITIZED TRUE)
else()
    set(VEXORAPI_SANITIZED FALSE)
endif()

include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)

add_library(vexor_hardening INTERFACE)
target_compile_options(vexor_hardening INTERFACE -fstack-protector-strong -fstack-clash-protection)

# Fortified calls need optimisation: without it glibc only warns. The sanitizers check plain calls
# better than fortified ones. -U comes first, because some compilers define it by themselves.
set(optimised "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")
set(optimised "$<AND:${optimised},$<NOT:$<BOOL:$<TARGET_PROPERTY:VEXOR_UNOPTIMISED>>>>")
if(NOT VEXORAPI_SANITIZED)
    # Level 3 also checks objects whose size is known only at run time.
    set(CMAKE_REQUIRED_FLAGS "-O2 -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3")
    check_cxx_source_compiles("#include <cstdlib>
        #if __USE_FORTIFY_LEVEL < 3
        #error
        #endif
        int main() { return 0; }" VEXORAPI_FORTIFIES_3)
    unset(CMAKE_REQUIRED_FLAGS)
    set(level $<IF:$<BOOL:${VEXORAPI_FORTIFIES_3}>,3,2>)
    target_compile_options(vexor_hardening INTERFACE
        "$<${optimised}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=${level}>")
endif()

# What distributions build with besides, where the compiler has it:
# - indirect jumps and returns arrive only where they may (x86);
# - uninitialised variables are zero instead of old stack content, except large ones in the path of
#   every request (VEXOR_UNINITIALIZED). Not with valgrind and the sanitizers, which could then not
#   detect reads of such variables;
# - null checks stay even where the compiler considers them redundant.
foreach(option -fcf-protection=full -ftrivial-auto-var-init=zero -fno-delete-null-pointer-checks)
    string(MAKE_C_IDENTIFIER "VEXORAPI_HAS${option}" known)
    check_cxx_compiler_flag(${option} ${known})
    if(${known} AND NOT VEXORAPI_SANITIZED)
        target_compile_options(vexor_hardening INTERFACE "$<${optimised}:${option}>")
    endif()
endforeach()

# vexor_unoptimised(TARGET): for targets that are compiled more often than they run, such as tests
# and programs for the build. They compile quickly and report where they crashed, in every build.
function(vexor_unoptimised target)
    set_target_properties(${target} PROPERTIES VEXOR_UNOPTIMISED ON)
    target_compile_options(${target} PRIVATE -O0 -g1)
endfunction()

# A 32-bit program handles files past 2 GiB and dates past 2038 only with both of these macros.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    target_compile_definitions(vexor_hardening INTERFACE _FILE_OFFSET_BITS=64 _TIME_BITS=64)
endif()

# The build id tells which debugging symbols belong to a file.
target_link_options(vexor_hardening INTERFACE
    -Wl,-z,relro,-z,now -Wl,-z,noexecstack -Wl,--build-id=sha1)

# All symbols must be resolved when linking, not by luck at load time. The exception is clang's
# sanitizer runtime, which is linked into programs only and resolved for libraries at load time.
if(NOT (VEXORAPI_SANITIZED AND CMAKE_CXX_COMPILER_ID MATCHES "Clang"))
    target_link_options(vexor_hardening INTERFACE -Wl,-z,defs)
endif()
