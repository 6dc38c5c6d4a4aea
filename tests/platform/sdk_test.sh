#!/bin/bash
# Moves the folder that ./run sdk creates, hides this tree's builds, and then builds and checks the minimal
# library in the moved folder: on this machine and, with clang and libc++, on ARM. Then plants faults that the
# kit or the compiler must detect.
#   sdk_test.sh
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
source "$root/scripts/lib.sh"
source "$root/scripts/arm_root.sh"

work=$(mktemp -d)
restore() {
  [ ! -e "$root/build.away" ] || mv "$root/build.away" "$root/build"
  rm -rf "$work"
}
trap restore EXIT
DESTDIR=$work/elsewhere "$root/scripts/sdk.sh" "$work/made"
[ ! -e "$work/elsewhere" ] || die "DESTDIR changes the folder's place"
touch "$work/file"
if "$root/scripts/sdk.sh" "$work/file/in it" 2>"$work/report"; then die "a folder in a file is accepted"; fi
grep -qF "file/in it: can't be created or written to" "$work/report" || { cat "$work/report"; exit 1; }
prepare_arm
mv "$root/build" "$root/build.away"
mv "$work/made" "$work/taken hüme"
cd "$work/taken hüme"
if grep -rlF "$root" .; then die "the files above contain the path of this tree"; fi
JAVA_HOME=$(debian_java_home "")
export JAVA_HOME
# Makers of algorithm libraries don't have these variables set.
unset LD_LIBRARY_PATH ORLU_BUILD

# checks COMMAND...: runs the kit, but limits the check with random parameters to one second.
checks() { "$@" --hostile 1 >"$work/report" 2>&1; }

# fails PATTERN COMMAND...: expects that the command fails and prints a line that matches PATTERN.
fails() {
  local text=$1
  shift
  if "$@" >"$work/report" 2>&1; then die "passed, but expected to fail with: $text"; fi
  grep -qE -- "$text" "$work/report" || { cat "$work/report"; die "not found: $text"; }
}

# change EXPRESSION FILE: edits a file with sed; fails if sed changes nothing.
change() {
  sed -i.before "$1" "$2"
  ! cmp -s "$2" "$2.before" || die "$2: nothing matches $1"
  rm "$2.before"
}

echo "== This machine, by find_package"
cmake -S example -B "$work/host" -DCMAKE_PREFIX_PATH="$PWD" -DCMAKE_CXX_FLAGS="-Wall -Wextra -Werror" \
  >"$work/log"
cmake --build "$work/host" >>"$work/log" || { cat "$work/log"; exit 1; }
library=$work/host/liborlu.vac.interface.so
checks kit/x86_64/conform "$library" || { cat "$work/report"; exit 1; }
tail -1 "$work/report"
grep -q '^passed *java' "$work/report" || { cat "$work/report"; die "the check with a Java VM did not run"; }
change 's/VERSION 3.20/VERSION 3.5/' example/CMakeLists.txt
cmake -S example -B "$work/older" -DCMAKE_PREFIX_PATH="$PWD" -Wno-deprecated >"$work/log"
change 's/OrluAlgo 1.0/OrluAlgo 2.0/' example/CMakeLists.txt
fails 'requested version "2.0"' cmake -S example -B "$work/newer" -DCMAKE_PREFIX_PATH="$PWD"
change 's/OrluAlgo 2.0/OrluAlgo 1.0/' example/CMakeLists.txt

echo "== 32-bit ARM, by pkg-config, with clang and libc++"
arm_library=$work/arm/liborlu.vac.interface.so
mkdir "$work/arm"
mapfile -t flags < <(PKG_CONFIG_PATH=$PWD/lib/pkgconfig pkg-config --cflags orlu-algo | xargs -n 1)
jni=(-isystem "$JAVA_HOME/include" -isystem "$JAVA_HOME/include/linux")
# Makers of algorithm libraries may enable many warnings.
for compiler in g++ clang++; do
  for standard in 17 20; do
    "$compiler" "${flags[@]}" "${jni[@]}" "-std=c++$standard" -fsyntax-only \
      -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror example/minimal_algo.cpp
  done
done
# build_for_arm SOURCE FLAG...: compiles SOURCE to $arm_library.
build_for_arm() {
  clang++ --target=arm-linux-gnueabihf --sysroot="$ORLU_ARM_ROOT" --gcc-toolchain=/usr \
    -march=armv7-a+fp -mthumb -stdlib=libc++ -fuse-ld=lld -fPIC -shared \
    "${jni[@]}" "${flags[@]}" "$@" -o "$arm_library"
}
arm_kit() { qemu-arm-static -L "$ORLU_ARM_ROOT" kit/armv7-libcxx/conform "$@"; }
build_for_arm example/minimal_algo.cpp
# The emulator is slow, above all on a busy machine, so it gets longer timeouts.
checks arm_kit "$arm_library" --patience 60 --budget 600 || { cat "$work/report"; exit 1; }
tail -1 "$work/report"

echo "== Planted faults"
change 's/^  callBack(request.cookie, /  if (request.nativeReq == 0) callBack(request.cookie, /' example/minimal_algo.cpp
cmake --build "$work/host" >"$work/log"
fails '^failed *callbacks' kit/x86_64/conform --only callbacks --patience 1 "$library"
build_for_arm example/minimal_algo.cpp
fails '^failed *callbacks' arm_kit --only callbacks --patience 1 "$arm_library"
# The compiler detects a changed record.
change 's/^  int32_t width = 0;/  int64_t width = 0;/' include/algo_interface.h
fails 'static.assert' cmake --build "$work/host"
fails 'static.assert' build_for_arm example/minimal_algo.cpp
# A build for the phone must be a 32-bit build: only this has the phone's layout.
fails '32-bit' g++ -D__ANDROID__ -fsyntax-only "${jni[@]}" "${flags[@]}" example/minimal_algo.cpp
echo "the folder works without this tree"
