#!/bin/bash
# Tests the NDK build as far as possible without the NDK: configures it with a stub of the NDK's toolchain
# file, and checks that it would build the phone's libraries and the kit, but no part for this machine.
#   android_preset_test.sh PROJECT
set -euo pipefail
project=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/ndk/build/cmake" "$work/ndk/sources/third_party/googletest/src"
touch "$work/ndk/sources/third_party/googletest/src/gtest-all.cc"
cat >"$work/ndk/build/cmake/android.toolchain.cmake" <<'END'
if(NOT ANDROID_ABI STREQUAL "armeabi-v7a" OR NOT ANDROID_STL STREQUAL "c++_shared" OR NOT ANDROID_PLATFORM)
  message(FATAL_ERROR "the preset does not set the ABI, the STL or the platform level")
endif()
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ANDROID_ABI ANDROID_STL ANDROID_PLATFORM)
set(ANDROID TRUE)
END

export ANDROID_NDK_HOME=$work/ndk
(cd "$project" && cmake --preset android -B "$work/build") >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
commands=$(ninja -C "$work/build" -t commands orlu_vas_native_interface orlu_probe conform_kit orlu_recorder)
grep -q -- '-o kit/conform_kit ' <<<"$commands"
grep -q -- '-o probe/liborlu.vac.interface.so' <<<"$commands"
grep -q -- '-o lib/liborlu.vas.native.interface.so' <<<"$commands"
grep -q -- '-o lib/liborlu.recorder.so' <<<"$commands"
if grep -E '\.jar|turbojpeg|libgtest|-o lib/liborlu\.vac\.interface' <<<"$commands"; then
  echo "FAILED: the build contains a part that the NDK cannot build"
  exit 1
fi
