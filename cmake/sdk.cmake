# Installs the SDK for makers of algorithm libraries: cmake --install BUILD --component sdk --prefix DIR. A
# build contains the kit for its own machine only; scripts/sdk.sh installs the builds for all machines.
file(STRINGS ${PROJECT_SOURCE_DIR}/jni/algo_interface.h lines
  REGEX "#define ORLU_ALGO_INTERFACE_M[A-Z]+OR [0-9]+$")
if(NOT lines MATCHES "MAJOR ([0-9]+);.*MINOR ([0-9]+)$")
  message(FATAL_ERROR "jni/algo_interface.h does not state its version")
endif()
set(interface_version ${CMAKE_MATCH_1}.${CMAKE_MATCH_2})

include(CMakePackageConfigHelpers)
set(generated ${CMAKE_CURRENT_BINARY_DIR}/sdk)
configure_file(sdk/orlu-algo.pc.in ${generated}/orlu-algo.pc @ONLY)
write_basic_package_version_file(${generated}/OrluAlgoConfigVersion.cmake
  VERSION ${interface_version} COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)

# orlu_install_sdk(DESTINATION FILE...)
function(orlu_install_sdk destination)
  install(FILES ${ARGN} DESTINATION ${destination} COMPONENT sdk)
endfunction()

orlu_install_sdk(. sdk/README.md)
orlu_install_sdk(include jni/algo_interface.h jni/algo_interface_layout.h jni/jni_support.h)
orlu_install_sdk(include/hidl host/include/hidl/HidlSupport.h)
orlu_install_sdk(include/cutils host/include/cutils/native_handle.h)
orlu_install_sdk(lib/cmake/OrluAlgo sdk/OrluAlgoConfig.cmake ${generated}/OrluAlgoConfigVersion.cmake)
orlu_install_sdk(lib/pkgconfig ${generated}/orlu-algo.pc)
orlu_install_sdk(docs docs/algorithm_library.md docs/conformance.md docs/contract.md docs/events.md)
orlu_install_sdk(example conformance/mutants/minimal_algo.cpp)
install(FILES sdk/example_CMakeLists.txt DESTINATION example RENAME CMakeLists.txt COMPONENT sdk)

if(TARGET conform_kit)
  set(machine ${CMAKE_SYSTEM_PROCESSOR})
  if(CMAKE_CROSSCOMPILING AND CMAKE_CXX_FLAGS MATCHES "-stdlib=libc[+][+]")
    set(machine armv7-libcxx)
  elseif(CMAKE_CROSSCOMPILING)
    set(machine armv7-libstdcxx)
  endif()
  install(PROGRAMS $<TARGET_FILE:conform_kit> DESTINATION kit/${machine} RENAME conform COMPONENT sdk)
endif()
