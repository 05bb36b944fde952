# Releases: the required settings, and the two zips that cpack makes.
option(VANTOR_RELEASE "Refuse what only development needs, and let cpack pack the programs" OFF)

# Stops the configuration unless everything that a release needs is set, and nothing that only development needs.
function(vantor_check_release)
    set(missing "")
    foreach(setting IN ITEMS VANTOR_PINNED_ISSUERS VANTOR_SERVICE_HOST_IPV4 VANTOR_SERVICE_HOST_IPV6)
        if("${${setting}}" MATCHES "^$|[.]example$")
            string(APPEND missing " -D${setting}=...")
        endif()
    endforeach()
    if(missing)
        message(FATAL_ERROR " A release is not configured without${missing}") # the leading blank keeps it on one line
    endif()
    foreach(setting IN ITEMS VANTOR_LOCAL_PKI VANTOR_TESTS VANTOR_SANITIZE VANTOR_FUZZ)
        if(${setting})
            message(FATAL_ERROR " A release has nothing of development in it: -D${setting}=${${setting}}")
        endif()
    endforeach()
    if("${VANTOR_PINNED_ISSUERS}" MATCHES "^${PROJECT_SOURCE_DIR}/build/pki/")
        message(FATAL_ERROR " A release does not trust the test authority: ${VANTOR_PINNED_ISSUERS}")
    endif()
endfunction()

# Strips a program for shipping and keeps its debug information in a file beside it. Without --preserve-dates the tools
# would write the current time into the program.
function(vantor_strip target)
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${CMAKE_OBJCOPY} --preserve-dates --only-keep-debug "$<TARGET_FILE:${target}>" "$<TARGET_FILE:${target}>.debug"
        COMMAND ${CMAKE_STRIP} --preserve-dates "$<TARGET_FILE:${target}>"
        COMMAND ${CMAKE_OBJCOPY} --preserve-dates "--add-gnu-debuglink=$<TARGET_FILE:${target}>.debug"
            "$<TARGET_FILE:${target}>"
        VERBATIM)
endfunction()

# One zip with the programs and the documents for their users and support, and one with the debug information.
macro(vantor_pack_release)
    set(package "vantor-${PROJECT_VERSION}")
    install(PROGRAMS "$<TARGET_FILE:vantor>" "$<TARGET_FILE:vantor-inspect>" DESTINATION "${package}")
    install(FILES CHANGELOG.md DESTINATION "${package}")
    install(FILES docs/formats.md docs/operations.md docs/vantor-inspect.1 DESTINATION "${package}/docs")
    install(FILES "$<TARGET_FILE:vantor>.debug" "$<TARGET_FILE:vantor-inspect>.debug" DESTINATION "${package}-debug")
    set(CPACK_GENERATOR External)
    set(CPACK_EXTERNAL_ENABLE_STAGING ON)
    set(CPACK_EXTERNAL_PACKAGE_SCRIPT "${PROJECT_SOURCE_DIR}/cmake/pack.cmake")
    set(CPACK_PACKAGE_FILE_NAME "${package}")
    set(CPACK_PACKAGE_VENDOR Vexora)
    set(CPACK_VERBATIM_VARIABLES ON)
    set(CPACK_VANTOR_SOURCES "${PROJECT_SOURCE_DIR}")
    include(CPack)
endmacro()
