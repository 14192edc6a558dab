# The tests that run vexorctl as a program, with the two libraries that they put first: one that
# fails as the real one cannot be made to fail, and another controller library.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

add_library(vexorctl_library SHARED vexorctl_library.c)
set_target_properties(vexorctl_library PROPERTIES
    OUTPUT_NAME vexorapi
    SOVERSION 1
    LIBRARY_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/vexorctl_library")
target_include_directories(vexorctl_library PRIVATE
    $<TARGET_PROPERTY:vexorapi,INTERFACE_INCLUDE_DIRECTORIES>)
target_link_libraries(vexorctl_library PRIVATE vexor_warnings vexor_hardening)

add_library(vexorctl_controller SHARED vexorctl_controller.cpp)
set_target_properties(vexorctl_controller PROPERTIES
    OUTPUT_NAME hxraid
    LIBRARY_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/vexorctl_controller")
target_link_libraries(vexorctl_controller PRIVATE
    "$<LINK_LIBRARY:WHOLE_ARCHIVE,hxfake>" vexor_warnings vexor_hardening)

add_test(NAME vexorctl
    COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/vexorctl_test.py"
        $<TARGET_FILE:vexorctl>
        $<TARGET_FILE_DIR:vexorctl_library> $<TARGET_FILE_DIR:vexorctl_controller>)
set_tests_properties(vexorctl PROPERTIES ENVIRONMENT PYTHONDONTWRITEBYTECODE=1 TIMEOUT 600)

add_test(NAME vexorctl.Commands
    COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/vexorctl_commands_test.py"
        $<TARGET_FILE:vexorctl> $<TARGET_FILE:check_in> $<TARGET_FILE:write_manual>)
set_tests_properties(vexorctl.Commands PROPERTIES ENVIRONMENT PYTHONDONTWRITEBYTECODE=1 TIMEOUT 600)

add_test(NAME vexorctl.Changes
    COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/vexorctl_changes_test.py"
        $<TARGET_FILE:vexorctl>)
set_tests_properties(vexorctl.Changes PROPERTIES ENVIRONMENT PYTHONDONTWRITEBYTECODE=1 TIMEOUT 600)
