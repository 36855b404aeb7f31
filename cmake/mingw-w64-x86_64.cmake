# Cross build for 64-bit Windows with MinGW-w64 (posix threads); tests run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(ZUL_MINGW_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER   ${ZUL_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${ZUL_MINGW_TRIPLE}-g++-posix)
set(CMAKE_Fortran_COMPILER ${ZUL_MINGW_TRIPLE}-gfortran-posix)
set(CMAKE_RC_COMPILER  ${ZUL_MINGW_TRIPLE}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${ZUL_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Debian's wine64 is not on PATH.
find_program(ZUL_WINE64 NAMES wine64 PATHS /usr/lib/wine NO_DEFAULT_PATH)
if(NOT ZUL_WINE64)
  find_program(ZUL_WINE64 NAMES wine64 wine)
endif()
set(CMAKE_CROSSCOMPILING_EMULATOR ${ZUL_WINE64})

# The MinGW runtime DLLs that every binary of the build needs beside it.
set(ZUL_MINGW_RUNTIME_DIRS
  /usr/lib/gcc/${ZUL_MINGW_TRIPLE}/12-posix
  /usr/${ZUL_MINGW_TRIPLE}/lib)
