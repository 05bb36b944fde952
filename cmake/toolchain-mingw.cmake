# Cross-builds the Windows program on Linux: GCC for x86_64 Windows with POSIX threads.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

if(NOT VANTOR_MINGW)
    set(VANTOR_MINGW x86_64-w64-mingw32)
    set(VANTOR_MINGW_THREADS -posix)
endif()
set(CMAKE_C_COMPILER ${VANTOR_MINGW}-gcc${VANTOR_MINGW_THREADS}) # GoogleTest needs it
set(CMAKE_CXX_COMPILER ${VANTOR_MINGW}-g++${VANTOR_MINGW_THREADS})
set(CMAKE_RC_COMPILER ${VANTOR_MINGW}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${VANTOR_MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

# Test programs run under Wine, in a prefix inside the build tree.
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../tools/wine-run;unit")
