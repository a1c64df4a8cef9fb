# 32-bit ARM hard-float with Debian's cross compiler. What was built runs on this machine in an
# emulator, which ctest puts in front of it.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)

set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
find_program(arm_hard_float_compiler ${CMAKE_CXX_COMPILER})
if(NOT arm_hard_float_compiler)
    message(FATAL_ERROR "Building for the device needs ${CMAKE_CXX_COMPILER}: run 'apt-get install g++-arm-linux-gnueabihf'.")
endif()
# Nothing here is linked with objects of compilers before GCC 7, whose calls differ.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/bin/qemu-arm -L /usr/arm-linux-gnueabihf)

# Programs come from this machine. So do header-only libraries, the only ones needed.
set(CMAKE_FIND_ROOT_PATH /usr/arm-linux-gnueabihf)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
