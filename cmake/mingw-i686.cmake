# 32-bit Windows, the form the saver is made for, from Debian's MinGW-w64.
set(TAMBLOR_MINGW i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
