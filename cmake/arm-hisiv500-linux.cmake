# Template toolchain file for the vendor's toolchain of the Hi3516CV300 SDK: arm-hisiv500-linux- (uClibc,
# ARM926EJ-S, soft float). Put the toolchain's bin/ folder on PATH (or set HISI_TOOLCHAIN_DIR) and
# configure with:  cmake --preset hisi -DHISI_SDK_DIR=/path/to/Hi3516CV300_SDK/mpp
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(HISI_TOOLCHAIN_PREFIX arm-hisiv500-linux- CACHE STRING "vendor toolchain prefix")
set(HISI_TOOLCHAIN_DIR "" CACHE PATH "folder of the vendor toolchain's binaries (empty: found on PATH)")
if(HISI_TOOLCHAIN_DIR)
  set(_hisi_bin "${HISI_TOOLCHAIN_DIR}/")
endif()
set(CMAKE_C_COMPILER ${_hisi_bin}${HISI_TOOLCHAIN_PREFIX}gcc)
set(CMAKE_CXX_COMPILER ${_hisi_bin}${HISI_TOOLCHAIN_PREFIX}g++)
set(CMAKE_C_FLAGS_INIT "-mcpu=arm926ej-s -mfloat-abi=soft -mthumb")
set(CMAKE_CXX_FLAGS_INIT "-mcpu=arm926ej-s -mfloat-abi=soft -mthumb")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
