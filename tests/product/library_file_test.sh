#!/bin/bash
# Checks the library's file: exported symbols, needed libraries, hardening, ARM attributes and stripped size.
#   library_file_test.sh LIBRARY READELF STRIP arm|host libstdc++|libc++
set -euo pipefail
library=$1
readelf=$2
strip=$3
machine=$4
cxx_library=$5
readonly size_budget=$((200 * 1024))
failures=0

# expect WHAT EXPECTED ACTUAL
expect() {
  if [ "$2" != "$3" ]; then
    printf 'FAILED: %s\n  expected: %s\n  found:    %s\n' "$1" "$2" "$3"
    failures=$((failures + 1))
  fi
}

# expect_match WHAT PATTERN TEXT
expect_match() {
  if ! grep -Eq -- "$2" <<<"$3"; then
    printf 'FAILED: %s\n  nothing matches: %s\n  in:\n%s\n' "$1" "$2" "$3"
    failures=$((failures + 1))
  fi
}

# dynamic TAG: prints the values of TAG in the dynamic section, sorted, on one line.
dynamic() {
  sed -n "s/.*($1)[^[]*\[\(.*\)\]\$/\1/p" <<<"$dynamic_section" | sort | xargs
}

dynamic_section=$("$readelf" -dW "$library")
symbols=$("$readelf" --dyn-syms -W "$library")
segments=$("$readelf" -lW "$library")

prefix=Java_com_orlu_orlu3rdalgoservice_Orlu3rdAlgoService_
natives=(
  abort algoInit algoRelease createNativeClient destroyNativeClient flush getData getVersion notify processImage
  processImageUpdateResult translateParamFiles
)
# Ignores the symbols that lld exports to mark where the data ends: no loader uses them.
# readelf's columns: number, value, size, type, binding, visibility, section, name.
offered=$(awk '$1 ~ /^[0-9]+:$/ && $5 != "LOCAL" && $7 != "UND" && $8 !~ /^(_edata|_end|__bss_start)$/ { print $4 "/" $8 }' <<<"$symbols")
expect "exported symbols" "$(printf "FUNC/$prefix%s\n" "${natives[@]}" | sort | xargs)" \
  "$(sort <<<"$offered" | xargs)"
expect_match "stack protector" ' UND __stack_chk_fail(@|$)' "$symbols"

# The libraries that the loader must find. They don't include the algorithm library, which is opened later.
needed=$(dynamic NEEDED)
toolchain='^(libstdc\+\+|libc\+\+|libc\+\+abi|libunwind|libm|libgcc_s|libc|ld-linux(-x86-64|-armhf|-aarch64)?)\.so\.[0-9]$'
expect "needed libraries of the device" \
  "libandroid.so libcutils.so liblog.so libnativewindow.so liborlu.camera3rd.log.so" \
  "$(tr ' ' '\n' <<<"$needed" | grep -Ev "$toolchain" | xargs)"
expect "needed C++ library" "$cxx_library" "$(tr ' ' '\n' <<<"$needed" | sed -nE 's/^(libstdc\+\+|libc\+\+)\.so\.[0-9]$/\1/p' | xargs)"
expect "SONAME" liborlu.vas.native.interface.so "$(dynamic SONAME)"
# shellcheck disable=SC2016 # the loader expands $ORIGIN, not the shell
expect "RUNPATH" '$ORIGIN' "$(dynamic RUNPATH)"
expect "RPATH" "" "$(dynamic RPATH)"

expect "relocations in code" "" "$(grep -E 'TEXTREL' <<<"$dynamic_section" || true)"
expect_match "all symbols bound at load time" 'BIND_NOW|FLAGS_1.*NOW' "$dynamic_section"
expect_match "data is read-only after relocation" '^ *GNU_RELRO ' "$segments"
expect_match "the stack is not executable" '^ *GNU_STACK .* RW +' "$segments"

if [ "$machine" = arm ]; then
  header=$("$readelf" -hW "$library")
  attributes=$("$readelf" -AW "$library")
  expect_match "32 bits" 'Class: +ELF32' "$header"
  expect_match "little endian" 'Data: .*little endian' "$header"
  expect_match "ARM" 'Machine: +ARM' "$header"
  expect_match "EABI 5, floats in registers" 'Flags: .*Version5 EABI.*hard-float' "$header"
  expect_match "ARMv7" 'Tag_CPU_arch: v7$' "$attributes"
  expect_match "application profile" 'Tag_CPU_arch_profile: Application' "$attributes"
  expect_match "Thumb-2" 'Tag_THUMB_ISA_use: Thumb-2' "$attributes"
fi

stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
"$strip" -o "$stripped" "$library"
size=$(stat -c %s "$stripped")
echo "Stripped size ($machine): $size bytes"
if [ "$machine" = arm ] && [ "$size" -gt "$size_budget" ]; then
  echo "FAILED: the size exceeds the budget of $size_budget bytes"
  failures=$((failures + 1))
fi

[ "$failures" -eq 0 ]
