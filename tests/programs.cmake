# How test programs are made, and what each finds in its environment. A program is one test of ctest:
# its cases run in one process, because starting a process costs more than most of them. A program
# that takes long says LONG: it is started before the others and left out of the inner loop. It may say
# SHARDS n, too, to be run as n tests of ctest, each with a share of its cases.

set(environment "${CMAKE_CURRENT_LIST_DIR}/support/environment.cmake")

# vexor_test(NAME [LONG] [SHARDS n] SOURCE...): a GoogleTest program over the library's own objects and the
# scripted controller, so that it reaches every internal name.
function(vexor_test name)
    vexor_googletest(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE
        vexorapi_objects hxfake EXPAT::EXPAT "${CRYPT_LIBRARY}")
endfunction()

# controller_test(NAME CONTROLLER [LONG] [SHARDS n] SOURCE...): a GoogleTest program over a controller library
# alone: hxfake, hxraid (the virtual controller as it is delivered), or hxraid_interface for the header.
function(controller_test name controller)
    vexor_googletest(${name} ${ARGN})
    target_compile_definitions(${name} PRIVATE PROJECT_VERSION="${PROJECT_VERSION}")
    target_link_libraries(${name} PRIVATE ${controller})
endfunction()

# vexor_googletest(NAME [LONG] [SHARDS n] SOURCE...): what every GoogleTest program has.
function(vexor_googletest name)
    cmake_parse_arguments(PARSE_ARGV 1 program "LONG" "SHARDS" "")
    add_executable(${name} ${program_UNPARSED_ARGUMENTS})
    vexor_unoptimised(${name})
    target_link_libraries(${name} PRIVATE test_main vexor_warnings vexor_hardening)
    target_precompile_headers(${name} REUSE_FROM main_test)
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${environment}")
    set(tests ${name})
    if(program_SHARDS)
        list(TRANSFORM tests APPEND .1of${program_SHARDS})
        foreach(number RANGE 2 ${program_SHARDS})
            list(APPEND tests ${name}.${number}of${program_SHARDS})
        endforeach()
    endif()
    set(shard 0)
    foreach(test IN LISTS tests)
        add_test(NAME ${test} COMMAND ${name})
        set_tests_properties(${test} PROPERTIES TIMEOUT 1500)
        if(program_SHARDS)
            set_tests_properties(${test} PROPERTIES ENVIRONMENT
                "GTEST_TOTAL_SHARDS=${program_SHARDS};GTEST_SHARD_INDEX=${shard}")
        endif()
        if(program_LONG)
            set_tests_properties(${test} PROPERTIES LABELS long COST 100)
        endif()
        math(EXPR shard "${shard} + 1")
    endforeach()
    if(CMAKE_CURRENT_SOURCE_DIR MATCHES "/tests/(backend|controllers|fuzz)")
        set_property(TEST ${tests} APPEND PROPERTY LABELS runtime)
        add_dependencies(runtime_tests ${name})
    endif()
    if(CMAKE_CURRENT_SOURCE_DIR MATCHES "/tests/backend")
        set_property(TEST ${tests} APPEND PROPERTY LABELS library)
        add_dependencies(library_tests ${name})
    endif()
endfunction()

# python_test(NAME [LONG] [ONCE] SCRIPT ARGUMENT...): a test program in Python. One that finds no test in
# itself fails. ONCE is for what neither the word size nor a sanitizer can change, such as which columns a
# list has: it runs in 64-bit builds without sanitizers alone.
function(python_test name)
    cmake_parse_arguments(PARSE_ARGV 1 program "LONG;ONCE" "" "")
    if(program_ONCE AND (VEXORAPI_SANITIZED OR CMAKE_SIZEOF_VOID_P EQUAL 4))
        return()
    endif()
    list(POP_FRONT program_UNPARSED_ARGUMENTS script)
    add_test(NAME ${name} COMMAND
        Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/${script}" ${program_UNPARSED_ARGUMENTS})
    if(program_LONG)
        set_tests_properties(${name} PROPERTIES LABELS long COST 100)
    endif()
    set_tests_properties(${name} PROPERTIES
        ENVIRONMENT PYTHONDONTWRITEBYTECODE=1
        FAIL_REGULAR_EXPRESSION "Ran 0 tests"
        TIMEOUT 1500)
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${environment}")
endfunction()
