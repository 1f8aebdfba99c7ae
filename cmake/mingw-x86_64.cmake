# 64-bit Windows, from Debian's MinGW-w64.
set(TAMBLOR_MINGW x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
