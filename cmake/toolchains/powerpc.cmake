# Big-endian 32-bit PowerPC. An emulator of the processor runs the tests and the tools of the build.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ppc)
set(CMAKE_C_COMPILER powerpc-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER powerpc-linux-gnu-g++)

set(libraries /usr/powerpc-linux-gnu)
set(CMAKE_FIND_ROOT_PATH ${libraries})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Programs name their libraries' place themselves: the emulator's option for it would also show them other directories.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-ppc)
set(CMAKE_EXE_LINKER_FLAGS_INIT
    "-Wl,--dynamic-linker=${libraries}/lib/ld.so.1,--disable-new-dtags,-rpath,${libraries}/lib")
