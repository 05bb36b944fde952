# Run with cmake -P. Fails unless every include in src/ points down: to the same folder or to one that is earlier in
# this list. Also fails for a folder that is not listed and for a listed one without sources.
cmake_minimum_required(VERSION 3.25)

set(floors
    platform/text
    platform
    platform/files
    platform/modules
    run/config
    run/log
    run/product
    run/options
    health/record
    health/protection
    health/probes
    health/repair
    health/tracing
    health
    telemetry/winhttp
    telemetry/request
    proxy/config
    proxy/calls
    proxy/user
    proxy/auth
    proxy/session
    proxy
    telemetry/http
    telemetry
    run/task
    run)
if(NOT DEFINED SOURCES) # the test of this script passes a folder with a wrong include
    set(SOURCES "${CMAKE_CURRENT_LIST_DIR}/../src")
endif()

file(GLOB_RECURSE files RELATIVE "${SOURCES}" "${SOURCES}/*.cpp" "${SOURCES}/*.h")
set(seen "")
set(includes 0)
foreach(file IN LISTS files)
    cmake_path(GET file PARENT_PATH folder)
    list(FIND floors "${folder}" floor)
    if(floor EQUAL -1)
        message(SEND_ERROR "${file}: its folder has no floor")
        continue()
    endif()
    list(APPEND seen "${folder}")
    file(STRINGS "${SOURCES}/${file}" lines REGEX "^#include \"[^\"]+/[^\"/]+\"")
    foreach(line IN LISTS lines)
        string(REGEX REPLACE "^#include \"([^\"]+)/[^\"/]+\".*" "\\1" below "${line}")
        list(FIND floors "${below}" floor_below)
        math(EXPR includes "${includes} + 1")
        if(floor_below EQUAL -1 OR floor_below GREATER floor)
            message(SEND_ERROR "${file}: ${line} points up, or nowhere")
        endif()
    endforeach()
endforeach()
foreach(folder IN LISTS floors)
    if(NOT folder IN_LIST seen)
        message(SEND_ERROR "${folder} holds no source")
    endif()
endforeach()
if(includes LESS 200)
    message(FATAL_ERROR "only ${includes} includes were read")
endif()
