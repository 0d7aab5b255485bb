# Cross build for the camera's CPU class: Hi3516CV300 = ARM926EJ-S (ARMv5TEJ, no FPU), soft float, Thumb
# code (an eighth smaller than ARM code; it interworks with the vendor's ARM-mode libraries under the EABI).
# Debian's armel toolchain (gcc-arm-linux-gnueabi, g++-arm-linux-gnueabi); tests run under qemu-arm.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_C_COMPILER arm-linux-gnueabi-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabi-g++)
set(CMAKE_C_FLAGS_INIT "-mcpu=arm926ej-s -mfloat-abi=soft -mthumb")
set(CMAKE_CXX_FLAGS_INIT "-mcpu=arm926ej-s -mfloat-abi=soft -mthumb")
set(CMAKE_FIND_ROOT_PATH /usr/arm-linux-gnueabi)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L /usr/arm-linux-gnueabi)
