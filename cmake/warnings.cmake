# What every compiler that builds this code is asked to warn of. A warning stops the build only where ./check builds: a plain
# configuration never fails because of a compiler that nobody here has seen.
option(VANTOR_WARNINGS_AS_ERRORS "Let a warning stop the build" OFF)

function(vantor_strict target)
    set_target_properties(${target} PROPERTIES COMPILE_WARNING_AS_ERROR "${VANTOR_WARNINGS_AS_ERRORS}")
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8 /Zc:__cplusplus)
    else()
        target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
            target_compile_options(${target} PRIVATE -Wno-restrict) # GCC 12 sees overlaps in std::string's operator+
        endif()
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND VANTOR_SANITIZE)
            target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized) # GCC's advice: unreliable with sanitizers
        endif()
    endif()
endfunction()
