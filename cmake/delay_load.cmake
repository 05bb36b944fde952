# DLLs that Windows does not map from its known-DLL list are bound on first use, after the program has restricted
# its DLL search path, so that a planted copy beside the program is never loaded.
#
# vantor_delay_load(TARGET DEF...) links TARGET with each module on demand. A .def file names a module and every
# function that the program calls in it; the same list becomes a table (see platform/delay_import.h) by which a stage
# can check, before it starts, that all of it is there.
function(vantor_delay_load target)
    set(tables "")
    foreach(def IN LISTS ARGN)
        get_filename_component(module "${def}" NAME_WE)
        get_filename_component(def "${def}" ABSOLUTE)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${def}")

        file(STRINGS "${def}" lines)
        list(FILTER lines EXCLUDE REGEX "^(LIBRARY|EXPORTS|;)")
        string(APPEND tables "inline constexpr const char* ${module}_functions[] = {\n")
        foreach(function IN LISTS lines)
            string(STRIP "${function}" function)
            if(function)
                string(APPEND tables "    \"${function}\",\n")
            endif()
        endforeach()
        string(APPEND tables "};\ninline constexpr DelayImport ${module}{L\"${module}.dll\", ${module}_functions};\n\n")

        if(MSVC)
            target_link_libraries(${target} PRIVATE ${module} delayimp)
            target_link_options(${target} PRIVATE "/DELAYLOAD:${module}.dll")
        else()
            set(library "${CMAKE_CURRENT_BINARY_DIR}/lib${module}_delay.a")
            add_custom_command(OUTPUT "${library}"
                COMMAND ${CMAKE_DLLTOOL} -d "${def}" --output-delaylib "${library}"
                DEPENDS "${def}" VERBATIM)
            add_custom_target(${module}_delay DEPENDS "${library}")
            add_dependencies(${target} ${module}_delay)
            target_link_libraries(${target} PRIVATE "${library}" delayimp)
        endif()
    endforeach()
    file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/generated/delay_import_tables.h" @ONLY CONTENT
"// Made by CMake from the .def files in src/platform; do not edit.
#pragma once

#include \"platform/delay_import.h\"

namespace vantor::delay_imports {

@tables@} // namespace vantor::delay_imports
")
endfunction()
