# Tests that start the program of a Windows tree, and those of the sources as texts.
foreach(rule IN ITEMS documented-messages include-direction)
    string(REPLACE "-" "_" script ${rule})
    add_test(NAME ${rule} COMMAND ${CMAKE_COMMAND} -P "${PROJECT_SOURCE_DIR}/cmake/${script}.cmake")
endforeach()

# The report on a fleet, with made fleets.
foreach(name IN ITEMS fleet-database fleet-seeds)
    string(REPLACE "fleet-" "" script ${name})
    file(APPEND "${test_programs}" "${name}|make-fleet|\n${name}|vantor-inspect|\n")
    add_test(NAME ${name} COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/fleet/${script}" "${PROJECT_BINARY_DIR}")
    set_tests_properties(${name} PROPERTIES TIMEOUT 300 LABELS full)
endforeach()

vantor_test(vantor_e2e_tests
    e2e/log_file_test.cpp
    e2e/modules_test.cpp
    e2e/probes_test.cpp
    e2e/program.cpp
    e2e/proxy_test.cpp
    e2e/pulse_test.cpp
    e2e/relay.cpp
    e2e/repairs_test.cpp)
target_link_libraries(vantor_e2e_tests PRIVATE vantor_receiver_lib vantor_inspect_lib vantor_httplib)
target_compile_definitions(vantor_e2e_tests PRIVATE
    VANTOR_SOURCE_DIRECTORY="${PROJECT_SOURCE_DIR}"
    VANTOR_PKI_DIRECTORY="${VANTOR_PKI_DIRECTORY}"
    VANTOR_E2E_DIRECTORY="${PROJECT_SOURCE_DIR}/build/e2e")

# With each C runtime that there is a compiler for. The tests of each half run one after the other, since they share a port
# and a registry; what they start is brought up to date first.
find_program(VANTOR_UCRT_COMPILER x86_64-w64-mingw32ucrt-g++)
foreach(tree IN ITEMS mingw ucrt)
    set(test_prefix "")
    if(tree STREQUAL "ucrt")
        if(NOT VANTOR_UCRT_COMPILER)
            continue()
        endif()
        set(test_prefix "ucrt.")
        file(APPEND "${test_programs}" "${test_prefix}|vantor_e2e_tests|e2e/*_test.cpp\n")
    endif()
    set(tree_directory "${PROJECT_SOURCE_DIR}/build/${tree}")
    add_test(NAME ${tree}-is-built COMMAND ${CMAKE_COMMAND} --build "${tree_directory}" --target end_to_end)
    set_tests_properties(${tree}-is-built PROPERTIES FIXTURES_SETUP ${tree} TIMEOUT 600)
    foreach(prefix IN ITEMS e2e e2e-b)
        set(half "PulseTest.*:TracesTest.*:LogFile.*:Modules.*")
        if(prefix STREQUAL "e2e-b")
            string(PREPEND half "-") # all others
        endif()
        set_property(TARGET vantor_e2e_tests PROPERTY CROSSCOMPILING_EMULATOR "${PROJECT_SOURCE_DIR}/tools/in-network" ${prefix})
        gtest_discover_tests(vantor_e2e_tests TEST_PREFIX "${test_prefix}" TEST_LIST ${tree}_${prefix}_tests TEST_FILTER "${half}"
            DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
            PROPERTIES TIMEOUT 120 RESOURCE_LOCK ${prefix} FIXTURES_REQUIRED ${tree}
            ENVIRONMENT "VANTOR_WINDOWS_TREE=${tree_directory}")
    endforeach()
endforeach()
