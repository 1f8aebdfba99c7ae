# What both Windows toolchains share; TAMBLOR_MINGW is the compiler's target. The variant with Windows's own threads
# needs no thread library beside the program.
set(CMAKE_SYSTEM_NAME Windows)
string(REGEX REPLACE "-.*" "" CMAKE_SYSTEM_PROCESSOR ${TAMBLOR_MINGW})
set(CMAKE_CXX_COMPILER ${TAMBLOR_MINGW}-g++-win32)
set(CMAKE_RC_COMPILER ${TAMBLOR_MINGW}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${TAMBLOR_MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
