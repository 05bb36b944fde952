# Turns VANTOR_PINNED_ISSUERS, a PEM file, into a source file that contains its text. With an empty setting the program
# trusts no server; a file that is missing, empty or broken stops the configuration.

function(vantor_read_pinned_issuers file result)
    set(${result} "" PARENT_SCOPE)
    if("${file}" STREQUAL "")
        message(STATUS "VANTOR_PINNED_ISSUERS is empty: the program will trust no server")
        return()
    endif()
    if(NOT EXISTS "${file}" OR IS_DIRECTORY "${file}")
        message(FATAL_ERROR "VANTOR_PINNED_ISSUERS: there is no file \"${file}\".")
    endif()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    file(READ "${file}" text)
    string(REPLACE "\r" "" text "${text}")
    if(NOT text MATCHES "[^ \t\n]")
        message(FATAL_ERROR "VANTOR_PINNED_ISSUERS: \"${file}\" is empty.")
    endif()

    # A certificate is a DER sequence with a two-byte length, which in Base64 begins with "MII".
    set(certificate "-----BEGIN CERTIFICATE-----\n(MII[A-Za-z0-9+/\n]+=?=?)\n-----END CERTIFICATE-----")
    string(REGEX MATCHALL "${certificate}" blocks "${text}")
    string(REGEX MATCHALL "-----(BEGIN|END)[^\n]*" markers "${text}")
    list(LENGTH blocks block_count)
    list(LENGTH markers marker_count)
    math(EXPR expected_markers "2 * ${block_count}")
    if(block_count EQUAL 0 OR NOT marker_count EQUAL expected_markers)
        message(FATAL_ERROR "VANTOR_PINNED_ISSUERS: \"${file}\" is broken: it must hold PEM certificates and nothing "
            "else between \"-----BEGIN\" and \"-----END\" lines (${block_count} whole certificates found).")
    endif()

    find_program(VANTOR_OPENSSL openssl)
    set(issuers "")
    foreach(block IN LISTS blocks)
        string(REGEX REPLACE "[^\n]*-----[^\n]*" "" base64 "${block}")
        string(REPLACE "\n" "" base64 "${base64}")
        string(LENGTH "${base64}" length)
        math(EXPR remainder "${length} % 4")
        set(parsed 0)
        if(VANTOR_OPENSSL)
            file(WRITE "${PROJECT_BINARY_DIR}/pinned_issuer.pem" "${block}\n")
            execute_process(COMMAND ${VANTOR_OPENSSL} x509 -noout -in "${PROJECT_BINARY_DIR}/pinned_issuer.pem"
                RESULT_VARIABLE parsed OUTPUT_QUIET ERROR_QUIET)
        endif()
        if(NOT remainder EQUAL 0 OR NOT parsed EQUAL 0)
            message(FATAL_ERROR "VANTOR_PINNED_ISSUERS: \"${file}\" is broken: a certificate in it does not decode.")
        endif()
        string(APPEND issuers "${block}\n")
    endforeach()
    message(STATUS "Pinned issuers: ${block_count} from ${file}")
    set(${result} "${issuers}" PARENT_SCOPE)
endfunction()

# Writes the source file that defines PinnedIssuersPem() (telemetry/request/pinned_issuers.h).
function(vantor_write_pinned_issuers text output)
    string(REGEX REPLACE "([^\n]*)\n" "    \"\\1\\\\n\"\n" literal "${text}")
    if(literal STREQUAL "")
        set(literal "    \"\"\n")
    endif()
    file(CONFIGURE OUTPUT "${output}" @ONLY CONTENT
"// Made by CMake from VANTOR_PINNED_ISSUERS; do not edit.
#include \"telemetry/request/pinned_issuers.h\"

namespace vantor {

std::string_view PinnedIssuersPem()
{
    return
@literal@        ;
}

} // namespace vantor
")
endfunction()
