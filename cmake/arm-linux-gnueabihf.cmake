# 32-bit ARM like the device: ARMv7-A, Thumb-2, hard float. ORLU_ARM_ROOT is the folder into
# which scripts/arm_root.sh unpacks Debian's armhf JVM and libraries. The compiler is Debian's cross compiler.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7-a)

if(NOT ORLU_ARM_ROOT)
  message(FATAL_ERROR "ORLU_ARM_ROOT is not set; run ./test --arm, which makes this root and builds with it")
endif()

set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_CXX_FLAGS_INIT "-march=armv7-a+fp -mthumb -mfloat-abi=hard -ffunction-sections -fdata-sections")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-Wl,--gc-sections")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,--gc-sections")

set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORLU_ARM_ROOT)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_FIND_ROOT_PATH ${ORLU_ARM_ROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${ORLU_ARM_ROOT}/usr/lib/arm-linux-gnueabihf/pkgconfig:${ORLU_ARM_ROOT}/usr/share/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${ORLU_ARM_ROOT})

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm-static;-L;${ORLU_ARM_ROOT})
