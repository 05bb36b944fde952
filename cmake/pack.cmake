# Run by cpack. Makes a zip of each installed folder, with the SHA-256 sums of its files. The same files always give the
# same bytes: names are sorted, there are no owners, and all files have the time of the commit (or SOURCE_DATE_EPOCH).
set(ENV{TZ} UTC)
if("$ENV{SOURCE_DATE_EPOCH}" STREQUAL "")
    execute_process(COMMAND git -C "${CPACK_VANTOR_SOURCES}" log -1 --format=%ct
        OUTPUT_VARIABLE time OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    set(ENV{SOURCE_DATE_EPOCH} "${time}")
endif()

file(GLOB folders LIST_DIRECTORIES true "${CPACK_TEMPORARY_DIRECTORY}/vantor-*")
foreach(folder IN LISTS folders)
    cmake_path(GET folder FILENAME name)
    file(GLOB_RECURSE files RELATIVE "${CPACK_TEMPORARY_DIRECTORY}" "${folder}/*")
    list(SORT files)
    set(sums "")
    foreach(file IN LISTS files)
        file(SHA256 "${CPACK_TEMPORARY_DIRECTORY}/${file}" sum)
        string(REPLACE "${name}/" "" inner "${file}")
        string(APPEND sums "${sum}  ${inner}\n")
    endforeach()
    file(WRITE "${folder}/SHA256SUMS" "${sums}")
    list(APPEND files "${name}/SHA256SUMS")
    list(JOIN files "\n" lines)
    file(WRITE "${CPACK_TEMPORARY_DIRECTORY}/files.txt" "${lines}\n")

    set(zip "${CPACK_TEMPORARY_DIRECTORY}/${name}.zip")
    file(REMOVE "${zip}")
    execute_process(WORKING_DIRECTORY "${CPACK_TEMPORARY_DIRECTORY}" COMMAND_ERROR_IS_FATAL ANY
        COMMAND chmod 644 -- ${files})
    execute_process(WORKING_DIRECTORY "${CPACK_TEMPORARY_DIRECTORY}" COMMAND_ERROR_IS_FATAL ANY
        COMMAND touch "--date=@$ENV{SOURCE_DATE_EPOCH}" -- ${files})
    execute_process(WORKING_DIRECTORY "${CPACK_TEMPORARY_DIRECTORY}" COMMAND_ERROR_IS_FATAL ANY
        COMMAND zip --quiet -X -9 "${zip}" -@ INPUT_FILE "${CPACK_TEMPORARY_DIRECTORY}/files.txt")
    list(APPEND CPACK_EXTERNAL_BUILT_PACKAGES "${zip}")
endforeach()
