# What both Windows toolchains share. The posix-threads flavour of Debian's
# compilers is the one whose libstdc++ has std::thread for GoogleTest.
set(CMAKE_C_COMPILER ${E3D_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${E3D_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${E3D_MINGW_TRIPLE}-windres)
set(CMAKE_OBJDUMP ${E3D_MINGW_TRIPLE}-objdump)
set(CMAKE_FIND_ROOT_PATH /usr/${E3D_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
# Windows programs and DLLs carry no libgcc, libstdc++ or winpthread DLLs.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static-libgcc -static-libstdc++ -static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static-libgcc -static-libstdc++")
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/wine-run.sh)
