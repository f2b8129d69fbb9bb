# SPDX-License-Identifier: GPL-3.0-or-later
# Builds for 64-bit Windows on a Linux host, and runs what was built with wine. The programs need no library of the
# compiler's beside them.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(compiler x86_64-w64-mingw32)
# The kind with POSIX threads is the one whose standard library has std::thread.
set(CMAKE_C_COMPILER ${compiler}-gcc-posix)
set(CMAKE_CXX_COMPILER ${compiler}-g++-posix)
set(CMAKE_RC_COMPILER ${compiler}-windres)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)

set(CMAKE_FIND_ROOT_PATH /usr/${compiler})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

cmake_path(SET wine NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../tools/wine.sh")
set(CMAKE_CROSSCOMPILING_EMULATOR ${wine})
# What paths of this host begin with for a program that wine runs.
set(QUILLBOX_EMULATED_ROOT "Z:")
