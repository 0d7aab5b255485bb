# CTest script: the vendor-SDK build (ISPTUNE_PLATFORM=hisi) configures and builds libisptune.so against
# the SDK headers of tests/hisi-sdk-stub, and refuses to configure without HISI_SDK_DIR.
#   cmake -DSOURCE=<repo> -DBINARY=<scratch folder> -P hisi_stub_build.cmake
file(REMOVE_RECURSE ${BINARY})

execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${BINARY}/no-sdk -G Ninja -DISPTUNE_PLATFORM=hisi
                RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(result EQUAL 0 OR NOT err MATCHES "ISPTUNE_PLATFORM=hisi needs the vendor SDK")
  message(FATAL_ERROR "configuring for hisi without HISI_SDK_DIR did not stop with the expected message:\n${err}")
endif()

execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${BINARY}/stub -G Ninja -DISPTUNE_PLATFORM=hisi
                        -DHISI_SDK_DIR=${SOURCE}/tests/hisi-sdk-stub -DCMAKE_BUILD_TYPE=MinSizeRel
                RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "configuring for hisi with the stub SDK failed:\n${out}\n${err}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BINARY}/stub --target isptune
                RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "building libisptune.so against the stub SDK failed:\n${out}\n${err}")
endif()
file(STRINGS ${BINARY}/stub/build.ninja sdk_include REGEX "hisi-sdk-stub/include")
if(NOT sdk_include)
  message(FATAL_ERROR "the hisi build does not take its headers from HISI_SDK_DIR/include")
endif()
message(STATUS "hisi build against the stub SDK: ok")
