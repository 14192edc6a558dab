# How test programs are made, and what each finds in its environment.

set(environment "${CMAKE_CURRENT_LIST_DIR}/support/environment.cmake")

# vexor_test(NAME SOURCE...): a GoogleTest program over the library's own objects and the scripted
# controller, so that it reaches every internal name.
function(vexor_test name)
    vexor_googletest(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE
        vexorapi_objects hxfake EXPAT::EXPAT "${CRYPT_LIBRARY}")
endfunction()

# controller_test(NAME CONTROLLER SOURCE...): a GoogleTest program over a controller library alone:
# hxfake, hxraid (the virtual controller as it is delivered), or hxraid_interface for the header.
function(controller_test name controller)
    vexor_googletest(${name} ${ARGN})
    target_compile_definitions(${name} PRIVATE PROJECT_VERSION="${PROJECT_VERSION}")
    target_link_libraries(${name} PRIVATE ${controller})
endfunction()

# vexor_googletest(NAME SOURCE...): what every GoogleTest program has.
function(vexor_googletest name)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE
        GTest::gmock GTest::gtest_main vexor_warnings vexor_hardening)
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${environment}")
    gtest_discover_tests(${name} TEST_PREFIX "${name}." PROPERTIES TIMEOUT 300)
endfunction()

# python_test(NAME SCRIPT ARGUMENT...): a test program in Python.
function(python_test name script)
    add_test(NAME ${name}
        COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/${script}" ${ARGN})
    set_tests_properties(${name} PROPERTIES ENVIRONMENT PYTHONDONTWRITEBYTECODE=1 TIMEOUT 600)
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${environment}")
endfunction()
