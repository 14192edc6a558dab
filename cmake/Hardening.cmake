# vexor_hardening: how every target of ours is hardened, in every build. A test reads the marks of
# it back from the built files.
#
# VEXORAPI_SANITIZED is set here for whoever must know that the build carries sanitizers (the
# presets put -fsanitize= into the compiler flags): what such a build links and exports says
# nothing about a release.
if("${CMAKE_C_FLAGS} ${CMAKE_CXX_FLAGS}" MATCHES "-fsanitize=")
    set(VEXORAPI_SANITIZED TRUE)
else()
    set(VEXORAPI_SANITIZED FALSE)
endif()

include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)

add_library(vexor_hardening INTERFACE)
target_compile_options(vexor_hardening INTERFACE -fstack-protector-strong -fstack-clash-protection)

# Fortified calls need the optimiser: without it glibc only warns. The sanitizers see the plain
# calls better than their fortified forms. -U first, for compilers that define it by themselves.
set(optimised "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")
set(optimised "$<AND:${optimised},$<NOT:$<BOOL:$<TARGET_PROPERTY:VEXOR_UNOPTIMISED>>>>")
if(NOT VEXORAPI_SANITIZED)
    # Level 3 bounds also what has a size that is known at run time only.
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
# - a variable that nothing was stored in is zero, not what the stack held before. What is large and
#   filled at once on the way of every request is exempt (VEXOR_UNINITIALIZED). Not beside valgrind and
#   the sanitizers, from which it would hide that such a variable is read;
# - a check for null stays also where the compiler believes that it knows better.
foreach(option -fcf-protection=full -ftrivial-auto-var-init=zero -fno-delete-null-pointer-checks)
    string(MAKE_C_IDENTIFIER "VEXORAPI_HAS${option}" known)
    check_cxx_compiler_flag(${option} ${known})
    if(${known} AND NOT VEXORAPI_SANITIZED)
        target_compile_options(vexor_hardening INTERFACE "$<${optimised}:${option}>")
    endif()
endforeach()

# vexor_unoptimised(TARGET): for what is compiled more often than it runs, such as tests and programs
# that only serve the build. It is quickly compiled and says where it crashed, in every build.
function(vexor_unoptimised target)
    set_target_properties(${target} PROPERTIES VEXOR_UNOPTIMISED ON)
    target_compile_options(${target} PRIVATE -O0 -g1)
endfunction()

# A 32-bit program sees files past 2 GiB and dates past 2038 only when it asks for both.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    target_compile_definitions(vexor_hardening INTERFACE _FILE_OFFSET_BITS=64 _TIME_BITS=64)
endif()

# The build id tells which debugging symbols belong to a file.
target_link_options(vexor_hardening INTERFACE
    -Wl,-z,relro,-z,now -Wl,-z,noexecstack -Wl,--build-id=sha1)

# Nothing may be left for the loader to find by luck. clang's sanitizer runtime is the exception:
# it is linked into the program only, and a library's references to it are met at load.
if(NOT (VEXORAPI_SANITIZED AND CMAKE_CXX_COMPILER_ID MATCHES "Clang"))
    target_link_options(vexor_hardening INTERFACE -Wl,-z,defs)
endif()
