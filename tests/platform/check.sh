#!/bin/bash
# Checks the sources that run on the device against the platform's headers and classes, as far as Debian and
# npm provide those headers and classes.
#   tests/platform/check.sh            all parts
#   tests/platform/check.sh java       only the named parts
# Parts:
#   sources    jni/, the probe, the kit, the recorder's library and the minimal library compile with the
#              platform's headers
#   symbols    the platform has all symbols that these sources need
#   agreement  our headers agree with the platform's
#   failure    planted faults are detected
#   java       the platform has the classes that host/java/ imitates and the members that jni/ looks up
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cd "$root"
source scripts/lib.sh
source scripts/arm_root.sh

readonly parts=(sources symbols agreement failure java)
readonly scratch=build/platform
# The API level of the device's platform, as in the preset android.
readonly api_level=30
# Debian lacks these headers; ours replace them.
readonly ours=(
  android/hardware_buffer.h hidl/HidlSupport.h orlu/camera3rd_log.h vndk/hardware_buffer.h
)
# Headers that both the platform and host/ have.
readonly both=(
  android/hardware_buffer_jni.h android/log.h android/sharedmem.h android/sharedmem_jni.h
  cutils/native_handle.h cutils/properties.h
)
readonly types_package=@nativescript/types-android@9.1.1

# call_compiler COUNT FLAG...: runs the compiler with the device's settings, Android's headers and
# Debian's C library, once for every COUNT arguments from standard input. The compiled code must
# not call bcmp(), which the device's C library lacks.
call_compiler() {
  xargs -0 -P "$(nproc)" -n "$1" clang++ "${@:2}" \
    --target=arm-linux-gnueabihf --sysroot="$ORLU_ARM_ROOT" -stdlib=libc++ -march=armv7-a+fp -mthumb \
    -D__ANDROID__ "-D__ANDROID_API__=$api_level" -std=c++17 \
    -Os -fPIC -fvisibility=hidden -fstack-protector-strong -femulated-tls -fno-builtin-bcmp \
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -Wno-missing-braces \
    -isystem tests/platform/libc -isystem "$scratch/replaced" \
    -isystem /usr/include/android/nativehelper -isystem /usr/include/android \
    -I. -Ijni -Ihost/probe -Iconformance -Iconformance/kit -Iconformance/checks \
    -Ibuild/dev/conformance/generated
}

# read_sources FILE...: compiles the files without writing objects.
read_sources() { printf '%s\0' "$@" | call_compiler 4 -fsyntax-only; }

# compile_sources FOLDER FILE...: clears the folder and compiles each file to an object in it.
compile_sources() {
  local folder=$1 source
  rm -rf "$folder"
  mkdir -p "$folder"
  for source in "${@:2}"; do
    printf '%s\0' "$source" -o "$folder/${source//\//_}.o"
  done | call_compiler 3 -c
}

check_sources() {
  local sources
  build_preset dev --tests build.ninja
  mapfile -t sources < <(git ls-files \
    'jni/*.cpp' 'host/probe/*.cpp' 'service/native/*.cpp' 'conformance/kit/*.cpp' 'conformance/checks/*.cpp')
  compile_sources "$scratch/objects" "${sources[@]}" conformance/mutants/minimal_algo.cpp
  echo "$((${#sources[@]} + 1)) sources compile with the platform's headers"
}

# Uses the objects that the part "sources" compiled.
check_symbols() {
  [ -d "$scratch/objects" ] || check_sources
  find_symbols "$scratch"/objects/*.o
}

# find_symbols OBJECT...: fails if the platform lacks a symbol that the objects need. The Rust package libc
# lists the functions of Android's C library.
find_symbols() {
  local rust=(/usr/share/cargo/registry/libc-*/src/unix) runtime=("$ORLU_ARM_ROOT"/usr/lib/llvm-*/lib/libc++{,abi}.so.1)
  tests/platform/symbols.py --nm arm-linux-gnueabihf-nm --others tests/platform/symbols.txt \
    --headers /usr/include/android "$scratch/replaced" --runtime "${runtime[@]}" \
    --bionic "${rust[0]}"/{mod.rs,linux_like/{mod,android/{mod,b32/mod,b32/arm}}.rs} -- "$@"
}

# Each agreement/*.cpp includes our header and the platform's, with ours in a namespace.
check_agreement() {
  local header sources
  rm -rf "$scratch/agreement"
  for header in "${both[@]}"; do
    mkdir -p "$scratch/agreement/ours/$(dirname "$header")"
    sed 's/^extern "C" {/namespace ours {/' "host/include/$header" >"$scratch/agreement/ours/$header"
  done
  sed 's/^extern "C" {/namespace ours {/' "$JAVA_HOME/include/jni.h" >"$scratch/agreement/ours/jni.h"
  sed -n '/^struct JNINativeInterface {/,/^};/p' /usr/include/android/nativehelper/jni.h |
    grep -oE '\(\*[A-Za-z]+\)\(' | sed 's/(\*\(.*\))(/ENV_SLOT(\1);/' >"$scratch/agreement/jni_slots.inc"
  (($(wc -l <"$scratch/agreement/jni_slots.inc") > 200)) || die "can't read the platform's jni.h"
  mapfile -t sources < <(git ls-files 'tests/platform/agreement/*.cpp')
  read_agreement "${sources[@]}"
  echo "${#both[@]} headers and jni.h agree with the platform's"
}

read_agreement() {
  CPATH=$scratch/agreement:$JAVA_HOME/include/linux read_sources "$@"
}

# must_fail TEXT COMMAND...: expects that the command fails and prints the text.
must_fail() {
  local text=$1 said
  shift
  if said=$("$@" 2>&1); then die "not detected: $text"; fi
  grep -qF -- "$text" <<<"$said" || die "failed without \"$text\": $said"
}

# Plants faults: a fault that Android's jni.h once revealed, wrong types in two of our headers, and a function
# that the platform lacks.
check_failure() {
  local copy=$scratch/failure
  rm -rf "$copy"
  mkdir -p "$copy"
  local now='attachThread(mJavaVm, &JavaVM::AttachCurrentThread, &env, nullptr)'
  sed "s/$now/mJavaVm->AttachCurrentThread(reinterpret_cast<void**>(\&env), nullptr)/" \
    jni/algo_native_callback.cpp >"$copy/algo_native_callback.cpp"
  must_fail "cannot initialize a parameter of type 'JNIEnv **'" read_sources "$copy/algo_native_callback.cpp"
  check_agreement >/dev/null
  sed -i 's/  int numFds;/  long long numFds;/' "$scratch/agreement/ours/cutils/native_handle.h"
  must_fail "numFds has another type" read_agreement tests/platform/agreement/native_handle.cpp
  check_agreement >/dev/null
  sed -i 's/size_t size/int size/' "$scratch/agreement/ours/android/sharedmem.h"
  must_fail "ASharedMemory_create has another type" read_agreement tests/platform/agreement/memory.cpp
  printf '#include <gnu/libc-version.h>\nextern const char* gText;\nconst char* gText = gnu_get_libc_version();\n' \
    >"$copy/of_this_machine.cpp"
  compile_sources "$copy/objects" "$copy/of_this_machine.cpp"
  must_fail "gnu_get_libc_version is in no library of the platform" find_symbols "$copy"/objects/*.o
  tests/platform/java_api_test.py
  echo "all planted faults are detected"
}

# Downloads the listing of the platform's classes once, from npm, at a fixed version.
fetch_types() {
  local folder=$scratch/types
  if [ -e "$folder/version" ] && [ "$(cat "$folder/version")" = "$types_package" ]; then return; fi
  command -v npm >/dev/null || install_missing "to fetch the listing of the platform's classes" npm
  rm -rf "$folder"
  mkdir -p "$folder"
  (cd "$folder" && npm pack --silent "$types_package" >packed && tar xzf "$(cat packed)") ||
    die "npm did not fetch $types_package, which lists the platform's classes: see its output above"
  echo "$types_package" >"$folder/version"
}

check_java() {
  local sources
  fetch_types
  mapfile -t sources < <(git ls-files 'host/java/*.java')
  rm -rf "$scratch/classes"
  mkdir -p "$scratch/classes"
  "$JAVA_HOME/bin/javac" --release 17 -d "$scratch/classes" "${sources[@]}"
  tests/platform/java_api.py --level "$api_level" --javap "$JAVA_HOME/bin/javap" \
    --classes "$scratch/classes" --exceptions tests/platform/java_api_exceptions.txt \
    "$scratch"/types/package/lib/android/android-platform-*-merged.d.ts jni
}

install_missing "to compare with the platform" "${run_packages[@]}" "${test_packages[@]}" \
  "${arm_clang_packages[@]}" "${platform_packages[@]}" git
prepare_arm
JAVA_HOME=$(debian_java_home "")
for header in "${ours[@]}"; do
  mkdir -p "$scratch/replaced/$(dirname "$header")"
  cp "host/include/$header" "$scratch/replaced/$header"
done
for part in "${@:-${parts[@]}}"; do
  "check_$part"
done
