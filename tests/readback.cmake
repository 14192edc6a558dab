# Tests that read the built files and the public headers back. Each has a second test that shows,
# on small objects made to be wrong, that the first one can fail.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

# The compiler as this build calls it (-m32 is among the flags of a 32-bit one).
separate_arguments(c_flags UNIX_COMMAND "${CMAKE_C_FLAGS}")
separate_arguments(cxx_flags UNIX_COMMAND "${CMAKE_CXX_FLAGS}")
set(c_compiler "${CMAKE_C_COMPILER}" ${c_flags})
set(cxx_compiler "${CMAKE_CXX_COMPILER}" ${cxx_flags})

# read_back_test(NAME PROGRAM ARGUMENT...): PROGRAM_test.py with these arguments.
function(read_back_test name program)
    add_test(NAME ${name}
        COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/${program}_test.py" ${ARGN})
    set_tests_properties(${name} PROPERTIES ENVIRONMENT PYTHONDONTWRITEBYTECODE=1)
endfunction()

read_back_test(headers.EachPublicHeaderCompilesAloneAsCAndAsCpp headers
    "${PROJECT_SOURCE_DIR}/backend/vexorapi/vexorapi.h"
    "${PROJECT_SOURCE_DIR}/backend/hxraid/hxraid.h"
    -- ${c_compiler} -- ${cxx_compiler})
read_back_test(headers.AHeaderThatDoesNotCompileAloneIsNoticed headers
    --self-check ${c_compiler})

# A sanitizer brings libraries, imports and constructors of its own.
if(NOT VEXORAPI_SANITIZED)
    read_back_test(exports.AreExactlyTheListedFunctions exports
        $<TARGET_FILE:vexorapi> "${CMAKE_CURRENT_SOURCE_DIR}/exports.txt")
    read_back_test(exports.ADifferenceFromTheListIsNoticed exports
        --self-check ${c_compiler})

    read_back_test(dependencies.AreTheControllerLibraryExpatLibcryptAndLibcAlone dependencies
        $<TARGET_FILE:vexorapi>)
    read_back_test(dependencies.AnyOtherDependencyOrHandlerIsNoticed dependencies
        --self-check ${c_compiler})

    read_back_test(hardening.IsInEveryBuiltFile hardening
        $<TARGET_FILE:vexorapi> $<TARGET_FILE:hxraid> $<TARGET_FILE:vexorctl>)
    # Of the library alone: a file may well make no call that has a checked form.
    if(CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$")
        read_back_test(hardening.TheReleasedLibraryMakesCheckedCalls hardening
            --fortified $<TARGET_FILE:vexorapi>)
    endif()
    read_back_test(hardening.EachMissingMarkIsNoticed hardening
        --self-check ${c_compiler})
endif()
