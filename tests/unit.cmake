# Tests of this tree's own sources.
vantor_test(vantor_core_tests
    health/protection/module_trust_test.cpp
    health/record/content_version_test.cpp
    health/record/dotted_version_test.cpp
    health/record/health_record_test.cpp
    health/record/report_test.cpp
    platform/files/file_facts_test.cpp
    platform/text/multi_string_test.cpp
    proxy/config/proxy_settings_test.cpp
    run/log/log_line_test.cpp
    run/options/options_test.cpp
    run/options/usage_test.cpp
    run/post_update_delay_test.cpp
    run/task/registration_checks_test.cpp
    run/task/task_description_test.cpp
    run/task/task_schedule_test.cpp
    telemetry/payload_text_test.cpp
    telemetry/request/pem_test.cpp
    telemetry/winhttp/code_names_test.cpp)
vantor_discover(vantor_core_tests)
target_link_libraries(vantor_core_tests PRIVATE vantor_core $<$<BOOL:${WIN32}>:shell32>)
target_compile_definitions(vantor_core_tests PRIVATE VANTOR_SOURCE_DIRECTORY="${PROJECT_SOURCE_DIR}")

# What vantor-inspect is made of is the same everywhere, so these tests run under the sanitizers alone.
if(NOT WIN32)
    vantor_test(vantor_inspect_tests
        inspect/fleet_test.cpp
        inspect/inspect_command_test.cpp
        inspect/pulse_decoder_test.cpp
        inspect/run_log_test.cpp)
    vantor_discover(vantor_inspect_tests)
    target_link_libraries(vantor_inspect_tests PRIVATE vantor_inspect_lib vantor_fleet)
endif()
# The program itself, on this machine and under Wine: a pulse must give exit code 0, and a log the right summary.
if(WIN32)
    set(labels LABELS full)
else()
    add_dependencies(quick vantor-inspect)
    set(labels "")
endif()
set(inspect_test ${test_prefix}vantor-inspect)
file(APPEND "${test_programs}" "${inspect_test}|vantor-inspect|\n")
add_test(NAME ${inspect_test}.exit-code
    COMMAND vantor-inspect "${CMAKE_CURRENT_SOURCE_DIR}/fuzz/corpus/pulse/periodic.txt")
set_tests_properties(${inspect_test}.exit-code PROPERTIES TIMEOUT 60 ${labels})
file(READ e2e/periodic.log log)
string(REPLACE "<version fields>" "\"vantor_major\": ${PROJECT_VERSION_MAJOR} \"vantor_minor\": ${PROJECT_VERSION_MINOR} \
\"vantor_patch\": ${PROJECT_VERSION_PATCH} \"vantor_build\": ${PROJECT_VERSION_TWEAK}" log "${log}")
file(WRITE "${CMAKE_CURRENT_BINARY_DIR}/periodic.log" "${log}")
add_test(NAME ${inspect_test} COMMAND vantor-inspect "${CMAKE_CURRENT_BINARY_DIR}/periodic.log")
set_tests_properties(${inspect_test} PROPERTIES TIMEOUT 60 ${labels}
    PASS_REGULAR_EXPRESSION "The periodic pulse was delivered directly; [0-9]+ warnings, 1 error\\.")

if(WIN32)
    # A program that the end-to-end tests run under the names of the product's.
    add_executable(process_stand_in stand_ins/process.cpp)
    vantor_strict(process_stand_in)
    # The updater that starts the program.
    add_executable(starter stand_ins/starter.cpp)
    vantor_strict(starter)

    # The program's connection with settings that no option gives.
    add_executable(proxied_client stand_ins/proxied_client.cpp)
    target_link_libraries(proxied_client PRIVATE vantor_windows)
    vantor_strict(proxied_client)

    # The program's runs, many of them in one process.
    add_executable(many_runs stand_ins/many_runs.cpp)
    target_link_libraries(many_runs PRIVATE vantor_windows)
    vantor_strict(many_runs)

    add_library(module_stand_in OBJECT stand_ins/module.cpp)
    # versioned_module(NAME [TRANSLATIONS]): a module with a version resource that has this translation table, or none.
    function(versioned_module name)
        set(variables "")
        if(ARGC GREATER 1)
            set(variables "BLOCK \"VarFileInfo\" BEGIN VALUE \"Translation\", ${ARGV1} END")
        endif()
        configure_file(stand_ins/versioned.rc.in "${CMAKE_CURRENT_BINARY_DIR}/${name}.rc" @ONLY)
        add_library(${name} MODULE $<TARGET_OBJECTS:module_stand_in> "${CMAKE_CURRENT_BINARY_DIR}/${name}.rc")
        set_target_properties(${name} PROPERTIES PREFIX "")
    endfunction()
    enable_language(RC)
    versioned_module(versioned_none)
    versioned_module(versioned_german "0x0407, 1252")
    versioned_module(versioned_german_english "0x0407, 1252, 0x0409, 1200")
    versioned_module(versioned_german_english_neutral "0x0407, 1252, 0x0409, 1200, 0, 1200")
    foreach(broken IN ITEMS versioned_lying versioned_short)
        add_library(${broken} MODULE $<TARGET_OBJECTS:module_stand_in> stand_ins/${broken}.rc)
        set_target_properties(${broken} PROPERTIES PREFIX "")
    endforeach()
    add_library(unversioned MODULE $<TARGET_OBJECTS:module_stand_in>)
    set_target_properties(unversioned PROPERTIES PREFIX "")

    # The product's access-protection module: a stand-in without a signature, and signed copies. They stay out of the
    # test program's folder, where the program would find them.
    add_library(vxeaaca MODULE stand_ins/vxeaaca.cpp)
    set_target_properties(vxeaaca PROPERTIES PREFIX ""
        LIBRARY_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/modules/unsigned")
    target_include_directories(vxeaaca PRIVATE "${PROJECT_SOURCE_DIR}/src")
    target_link_libraries(vxeaaca PRIVATE ole32)
    target_link_options(vxeaaca PRIVATE -s)
    vantor_strict(vxeaaca)

    # signed_module(FOLDER TARGET): modules/FOLDER/vxeaaca.dll, which is TARGET with a signature.
    find_program(VANTOR_OSSLSIGNCODE osslsigncode REQUIRED)
    function(signed_module folder target)
        set(signed "${CMAKE_CURRENT_BINARY_DIR}/modules/${folder}/vxeaaca.dll")
        set(signer "${VANTOR_PKI_DIRECTORY}/code-signer")
        set(authority "${VANTOR_PKI_DIRECTORY}/code-authority.pem")
        add_custom_command(OUTPUT "${signed}"
            COMMAND ${CMAKE_COMMAND} -E make_directory "${CMAKE_CURRENT_BINARY_DIR}/modules/${folder}"
            COMMAND ${CMAKE_COMMAND} -E rm -f "${signed}" # osslsigncode replaces no file
            COMMAND ${VANTOR_OSSLSIGNCODE} sign -certs "${signer}.pem" -key "${signer}.key" -ac "${authority}"
                -h sha256 -in "$<TARGET_FILE:${target}>" -out "${signed}"
            DEPENDS ${target} "${signer}.pem" "${signer}.key" "${authority}" VERBATIM)
        add_custom_target(${folder}_module ALL DEPENDS "${signed}")
    endfunction()
    signed_module(signed vxeaaca)
    signed_module(exportless unversioned)

    # What the end-to-end tests start or copy.
    add_custom_target(end_to_end DEPENDS vantor vantor_windows_tests process_stand_in starter proxied_client many_runs
        versioned_german signed_module)
    add_dependencies(quick end_to_end)

    vantor_test(vantor_windows_tests
        health/collectors_test.cpp
        health/probes/process_probe_test.cpp
        health/probes/product_probes_test.cpp
        health/probes/text_probes_test.cpp
        health/protection/access_protection_test.cpp
        health/protection/trusted_module_test.cpp
        health/repair/integrity_checks_test.cpp
        health/tracing/trace_files_test.cpp
        health/tracing/trace_properties_test.cpp
        health/tracing/updater_tracing_test.cpp
        platform/files/append_file_test.cpp
        platform/modules/module_test.cpp
        platform/registry_test.cpp
        platform/text/encoding_test.cpp
        proxy/auth/proxy_auth_user_test.cpp
        proxy/calls/name_resolver_test.cpp
        proxy/http_proxy_manager_test.cpp
        proxy/session/http_session_test.cpp
        proxy/session/http_session_auto_proxy_test.cpp
        proxy/session/http_session_named_proxy_test.cpp
        proxy/session/system_proxy_test.cpp
        proxy/user/logged_on_user_test.cpp
        proxy/user/shell_names_test.cpp
        proxy/user/user_impersonation_test.cpp
        run/log/logging_test.cpp
        run/log/vantor_logging_test.cpp
        run/options/get_config_test.cpp
        run/product/brand_test.cpp
        run/product/file_version_info_test.cpp
        run/product/ipv6_preference_test.cpp
        run/task/scheduled_task_test.cpp
        run/task/scheduling_test.cpp
        support/recording_scheduler.cpp
        telemetry/http/http_connection_test.cpp
        telemetry/request/certificate_test.cpp
        telemetry/request/http_request_test.cpp
        telemetry/rest_telemetry_test.cpp
        telemetry/vri_rest_test.cpp)
    if(CMAKE_CROSSCOMPILING_EMULATOR) # local time must not be UTC's
        set_property(TARGET vantor_windows_tests PROPERTY CROSSCOMPILING_EMULATOR
            ${CMAKE_CROSSCOMPILING_EMULATOR} TZ=JST-9)
    endif()
    vantor_discover(vantor_windows_tests)
    add_dependencies(vantor_windows_tests signed_module exportless_module process_stand_in starter unversioned
        versioned_none versioned_lying versioned_short versioned_german
        versioned_german_english versioned_german_english_neutral)
    target_link_libraries(vantor_windows_tests PRIVATE vantor_windows winhttp crypt32)
    target_compile_definitions(vantor_windows_tests PRIVATE
        VANTOR_SOURCE_DIRECTORY="${PROJECT_SOURCE_DIR}" VANTOR_PKI_DIRECTORY="${VANTOR_PKI_DIRECTORY}")
endif()

if(NOT WIN32)
    vantor_test(vantor_receiver_tests
        receiver/pulse_page_test.cpp
        receiver/receiver_test.cpp)
    vantor_discover(vantor_receiver_tests)
    target_link_libraries(vantor_receiver_tests PRIVATE vantor_receiver_lib vantor_httplib)
    target_compile_definitions(vantor_receiver_tests PRIVATE VANTOR_PKI_DIRECTORY="${VANTOR_PKI_DIRECTORY}")
endif()
