# Requests under valgrind, from the program down to the virtual controller. They are slow and carry
# the label memcheck, so that the everyday run can leave them out. A sanitizer cannot run there.
find_program(VALGRIND valgrind)
if(VALGRIND AND NOT VEXORAPI_SANITIZED AND CMAKE_SIZEOF_VOID_P EQUAL 8)
    file(GLOB example_commands CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/examples/commands/*.xml")
    read_back_test(memcheck.TheExampleCommandsAreSound memcheck
        --commands $<TARGET_FILE:vexorctl> ${example_commands})
    read_back_test(memcheck.TurningCommandsAwayIsSound memcheck
        --declined $<TARGET_FILE:vexorctl>)
    read_back_test(memcheck.FaultsAreNoticed memcheck
        --self-check ${c_compiler})
    set_tests_properties(
        memcheck.TheExampleCommandsAreSound memcheck.TurningCommandsAwayIsSound
        memcheck.FaultsAreNoticed PROPERTIES LABELS memcheck)
endif()
