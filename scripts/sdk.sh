#!/bin/bash
# Writes the kit for makers of algorithm libraries: ./run sdk DIR
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$root/scripts/lib.sh"
source "$root/scripts/arm_root.sh"

readonly usage="Usage: ./run sdk DIR

Write a kit for makers of algorithm libraries to the folder DIR: the header, the
checks for x86-64 and 32-bit ARM, a minimal library, and the docs. DIR must be
empty or missing."

# refuse TEXT: reports an invalid command line in the format of the other subcommands, and exits with 2.
refuse() {
  echo "run: error: $1" >&2
  exit 2
}

if [ "${1:-}" = --help ]; then
  echo "$usage"
  exit
fi
case ${1:-} in -*) refuse "unknown option $1; see ./run sdk --help" ;; esac
if [ $# -ne 1 ] || [ -z "$1" ]; then refuse "expected one folder; see ./run sdk --help"; fi
if [ -e "$1" ] && { [ ! -d "$1" ] || [ -n "$(ls -A "$1")" ]; }; then
  refuse "$1: exists and is not an empty folder"
fi
if ! mkdir -p "$1" 2>/dev/null || [ ! -w "$1" ]; then refuse "$1: can't be created or written to"; fi

install_missing "to build the kit" "${run_packages[@]}" "${test_packages[@]}" "${arm_clang_packages[@]}"
prepare_arm
# cmake --install would prepend DESTDIR to the folder's path.
unset DESTDIR
for preset in dev arm arm-clang; do
  build_preset "$preset" --tests conform_kit
  cmake --install "$root/build/$preset" --strip --component sdk --prefix "$(realpath "$1")" >/dev/null
done
echo "Wrote $1; start with $1/README.md"
