# Which MPP declarations the library compiles against (design: "Seams").
#   sim  : our own declarations in src/platform/ (layouts of platform-layouts.md), simulator and tests.
#   hisi : the vendor's headers from ${HISI_SDK_DIR}/include and libraries from ${HISI_SDK_DIR}/lib.
if(ISPTUNE_PLATFORM STREQUAL "hisi")
  if(NOT HISI_SDK_DIR)
    message(FATAL_ERROR
      "ISPTUNE_PLATFORM=hisi needs the vendor SDK: configure with -DHISI_SDK_DIR=DIR, where DIR/include "
      "holds mpi_isp.h, mpi_ae.h, mpi_awb.h, mpi_vi.h, mpi_vpss.h and their hi_comm_*.h, and DIR/lib the "
      "vendor libraries (libmpi, libisp, lib_hiae, lib_hiawb, ...).")
  endif()
  if(NOT EXISTS "${HISI_SDK_DIR}/include/mpi_isp.h")
    message(FATAL_ERROR "HISI_SDK_DIR=${HISI_SDK_DIR}: no include/mpi_isp.h there; is this the Hi3516CV300 SDK?")
  endif()
  set(ISPTUNE_PLATFORM_INCLUDE "${HISI_SDK_DIR}/include")
  set(ISPTUNE_PLATFORM_DEFINE ISPTUNE_PLATFORM_HISI=1)
elseif(ISPTUNE_PLATFORM STREQUAL "sim")
  set(ISPTUNE_PLATFORM_INCLUDE "")
  set(ISPTUNE_PLATFORM_DEFINE ISPTUNE_PLATFORM_SIM=1)
else()
  message(FATAL_ERROR "ISPTUNE_PLATFORM must be sim or hisi, not '${ISPTUNE_PLATFORM}'")
endif()
