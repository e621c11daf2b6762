# WebAssembly with Debian's emscripten; the tests run under node.
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
# node's own fetch would take the loader's file reads; the real file system
# serves the tests' files.
set(CMAKE_CROSSCOMPILING_EMULATOR node --no-experimental-fetch)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-sNODERAWFS=1 -sALLOW_MEMORY_GROWTH=1 -sEXIT_RUNTIME=1")
