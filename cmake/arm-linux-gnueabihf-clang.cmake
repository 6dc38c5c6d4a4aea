# Builds for 32-bit ARM like arm-linux-gnueabihf.cmake, but with the phone's toolchain: clang, lld and libc++.
# The C and C++ libraries are in ORLU_ARM_ROOT; libgcc is from Debian's cross compiler.
include(${CMAKE_CURRENT_LIST_DIR}/arm-linux-gnueabihf.cmake)

# This toolchain also builds GoogleTest, which needs a C compiler.
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
foreach(language C CXX)
  set(CMAKE_${language}_COMPILER_TARGET arm-linux-gnueabihf)
  set(CMAKE_${language}_COMPILER_EXTERNAL_TOOLCHAIN /usr)
endforeach()
set(CMAKE_SYSROOT ${ORLU_ARM_ROOT})
# The tests expect the output of GNU's readelf and strip, not that of LLVM's tools.
set(CMAKE_READELF arm-linux-gnueabihf-readelf CACHE FILEPATH "")
set(CMAKE_STRIP arm-linux-gnueabihf-strip CACHE FILEPATH "")

string(APPEND CMAKE_CXX_FLAGS_INIT " -stdlib=libc++")
string(APPEND CMAKE_SHARED_LINKER_FLAGS_INIT " -fuse-ld=lld")
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -fuse-ld=lld")
