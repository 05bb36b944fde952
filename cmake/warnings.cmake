# Warnings are errors everywhere, in every compiler that builds this code.
function(vantor_strict target)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /WX /permissive- /utf-8 /Zc:__cplusplus)
    else()
        target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
            target_compile_options(${target} PRIVATE -Wno-restrict) # GCC 12 sees overlaps in std::string's operator+
        endif()
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND VANTOR_SANITIZE)
            target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized) # GCC's advice: unreliable with sanitizers
        endif()
    endif()
endfunction()
