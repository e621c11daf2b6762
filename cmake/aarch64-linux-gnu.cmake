# Cross build for 64-bit ARM Linux with clang and Debian's arm64 cross
# libraries (g++-aarch64-linux-gnu would remove g++-multilib, which the
# i386 build needs); tests run under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(E3D_TRIPLE aarch64-linux-gnu)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET ${E3D_TRIPLE})
set(CMAKE_CXX_COMPILER_TARGET ${E3D_TRIPLE})
set(CMAKE_FIND_ROOT_PATH /usr/${E3D_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L /usr/${E3D_TRIPLE})
