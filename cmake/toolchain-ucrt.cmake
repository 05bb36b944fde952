# The same cross build with the universal C runtime, which is part of Windows 10 and used by Visual Studio.
set(VANTOR_MINGW x86_64-w64-mingw32ucrt)
set(VANTOR_MINGW_THREADS "")
include("${CMAKE_CURRENT_LIST_DIR}/toolchain-mingw.cmake")
