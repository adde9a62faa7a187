# Cross-building for 64-bit ARM on Debian: g++-aarch64-linux-gnu, libraries of the foreign architecture arm64
# (libhwy-dev:arm64, qtbase5-dev:arm64), Qt's tools of the build machine. Programs run under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)

# The libraries lie beside the build machine's own, in folders named after the architecture.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
