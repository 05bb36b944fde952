# The same cross build with the C runtime that Windows has had since its tenth version, and Visual Studio uses.
set(VANTOR_MINGW x86_64-w64-mingw32ucrt)
set(VANTOR_MINGW_THREADS "")
include("${CMAKE_CURRENT_LIST_DIR}/toolchain-mingw.cmake")
