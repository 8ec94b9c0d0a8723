# 32-bit x86, where the host's records have their classic sizes. A 64-bit kernel runs the programs as they are, so this
# is no cross build to CMake: its tests and tools are started directly.
set(CMAKE_C_COMPILER i686-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)
