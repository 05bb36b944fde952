# Warning options for all compilers. Warnings stop the build only in ./check, so that a plain build does not fail with a
# compiler that has not been tried.
option(VANTOR_WARNINGS_AS_ERRORS "Let a warning stop the build" OFF)

function(vantor_strict target)
    set_target_properties(${target} PROPERTIES COMPILE_WARNING_AS_ERROR "${VANTOR_WARNINGS_AS_ERRORS}")
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8 /Zc:__cplusplus)
    else()
        target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
            target_compile_options(${target} PRIVATE -Wno-restrict) # false positives of GCC 12 in std::string's operator+
        endif()
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND VANTOR_SANITIZE)
            target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized) # unreliable with sanitizers
        endif()
    endif()
endfunction()
