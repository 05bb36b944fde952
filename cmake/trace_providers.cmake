# Turns VANTOR_TRACE_PROVIDERS, a text file with a provider's GUID and level per line, into a table in the program.
function(vantor_write_trace_providers file output)
    if(NOT EXISTS "${file}" OR IS_DIRECTORY "${file}")
        message(FATAL_ERROR "VANTOR_TRACE_PROVIDERS: there is no file \"${file}\".")
    endif()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    set(hex "[0-9A-Fa-f]")
    string(REPEAT "${hex}" 4 hex4)
    string(REPEAT "${hex4}" 3 hex12)
    file(STRINGS "${file}" lines)
    set(rows "")
    set(count 0)
    foreach(line IN LISTS lines)
        string(STRIP "${line}" line)
        if(line STREQUAL "" OR line MATCHES "^#")
            continue()
        endif()
        if(NOT line MATCHES "^({${hex4}${hex4}-${hex4}-${hex4}-${hex4}-${hex12}})[ \t]+([1-5])$")
            message(FATAL_ERROR "VANTOR_TRACE_PROVIDERS: \"${file}\": not a GUID in braces and a level of 1 to 5: ${line}")
        endif()
        string(APPEND rows "    {${CMAKE_MATCH_2}, L\"${CMAKE_MATCH_1}\"},\n")
        math(EXPR count "${count} + 1")
    endforeach()
    file(CONFIGURE OUTPUT "${output}" @ONLY CONTENT
"// Made by CMake from VANTOR_TRACE_PROVIDERS; do not edit.
#pragma once

#include <array>

namespace vantor {

struct TraceProviderText {
    unsigned long level;
    const wchar_t* id;
};

inline constexpr std::array<TraceProviderText, @count@> kTraceProviderTexts{{
@rows@}};

} // namespace vantor
")
endfunction()
