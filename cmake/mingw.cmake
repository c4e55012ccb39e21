# What both Windows toolchains share: the compilers with POSIX threads, the resource and interface compilers, and
# the script that runs what was built under Wine.
set(CMAKE_CXX_COMPILER ${QUILLFILE_MINGW}-g++-posix)
set(CMAKE_C_COMPILER ${QUILLFILE_MINGW}-gcc-posix)
set(CMAKE_RC_COMPILER ${QUILLFILE_MINGW}-windres)
set(QUILLFILE_WIDL ${QUILLFILE_MINGW}-widl)

set(CMAKE_FIND_ROOT_PATH /usr/${QUILLFILE_MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CXX_FLAGS_INIT "-gdwarf-4")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tests/windows/run-wine)
