# The vendor functions, from command to result. Only functions_table_test reads the library's rows,
# which takes a compiler ten seconds; the others know the functions by their names.
vexor_test(functions_test functions_test.cpp functions_adapter_rows.cpp functions_disk_rows.cpp
    functions_disk_group_rows.cpp functions_virtual_disk_rows.cpp)
vexor_test(functions_host_test functions_host_test.cpp)
vexor_test(functions_irregular_test functions_irregular_test.cpp)
vexor_test(functions_memory_test functions_memory_test.cpp)
target_link_libraries(functions_memory_test PRIVATE failing_allocations)
vexor_test(functions_pages_test functions_pages_test.cpp)
vexor_test(functions_records_test functions_records_test.cpp)
vexor_test(functions_table_test functions_table_test.cpp)
foreach(name functions_test functions_host_test functions_records_test)
    target_compile_definitions(${name} PRIVATE GOLDEN_FOLDER="${CMAKE_CURRENT_SOURCE_DIR}/golden")
endforeach()
