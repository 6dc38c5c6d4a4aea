#!/bin/bash
# Tests that build_folder.sh keeps builds up to date, on a project with a single C++ file.
set -uo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0

# builds TEXT: builds the project, and expects only this text as output.
builds() {
  local said
  said=$(bash -c 'set -euo pipefail; root=$1; source "$2/scripts/lib.sh"; build_preset dev' x "$root" "$here" 2>&1)
  if [ "$said" != "$1" ]; then
    echo "FAILED: \"$1\" was expected instead of: $said"
    failures=$((failures + 1))
  fi
}

# answers NUMBER: expects this exit status of the built program.
answers() {
  local status=0
  "$root/build/dev/answer" || status=$?
  if [ "$status" -ne "$1" ]; then
    echo "FAILED: the program returned $status instead of $1"
    failures=$((failures + 1))
  fi
}

root=$folder/first
first_time='Building dev; the first time takes a minute or two'
mkdir -p "$root/scripts"
cp "$here/scripts/build_folder.sh" "$root/scripts"
cat >"$root/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(answer LANGUAGES CXX)
option(ORLU_TESTS "" ON)
file(GLOB sources CONFIGURE_DEPENDS *.cpp)
add_executable(answer ${sources})
target_compile_definitions(answer PRIVATE ${DEFINED})
END
presets() {
  # shellcheck disable=SC2016 # CMake expands these
  printf '{"version": 6, "configurePresets": [{"name": "dev", "generator": "Ninja",
    "binaryDir": "${sourceDir}/build/dev", "cacheVariables": {"DEFINED": "%s"}}]}' "$1" >"$root/CMakePresets.json"
}
presets ANSWER=1
echo 'int main() { return ANSWER; }' >"$root/main.cpp"

builds "$first_time"
answers 1
builds ''

presets ANSWER=2
builds ''
answers 2

# An older file replaces a newer one, and is then renamed.
echo 'int main() { return 3; }' >"$folder/older.cpp"
touch -d '2 days ago' "$folder/older.cpp"
mv "$folder/older.cpp" "$root/main.cpp"
builds ''
answers 3
mv "$root/main.cpp" "$root/other.cpp"
builds ''
answers 3

echo 'cmake 3.0' >>"$root/build/dev/packages.txt"
builds "No longer installed: cmake 3.0; setting up build/dev from scratch
$first_time"

cp -r "$root" "$folder/second"
root=$folder/second
builds "This checkout was moved or copied from $folder/first; setting up build/dev from scratch
$first_time"
answers 3
builds ''

rm -f "$root/build/dev/setup.txt" "$root/build/dev/build.ninja"
builds "$first_time"
answers 3

[ "$failures" -eq 0 ] && echo "All passed"
exit $((failures > 0))
