#!/bin/bash
# Static checks; every finding is an error.
#   scripts/lint.sh              all checks
#   scripts/lint.sh shell java   only these checks
# cpp: clang-tidy with .clang-tidy; headers: compiles each header alone; shell: shellcheck; java: the Eclipse
# compiler with scripts/ecj.prefs; android_bp: the platform's own formatter and parser.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
source scripts/lib.sh

readonly checks=(cpp headers shell java android_bp)
readonly build=build/dev

# Checks every source that is compiled for this machine, with one process per processor. Configures the builds
# but compiles nothing. Ignores unknown warning options, because some exist only in GCC. Leaves out the timed
# benchmarks: clang-tidy reports the loops of the benchmark library as dead stores and leaks.
lint_cpp() {
  local preset source
  local -A preset_of=()
  install_missing "to read all sources" "${fuzz_packages[@]}"
  build_preset fuzz build.ninja
  build_preset dev --tests build.ninja
  for preset in fuzz dev; do
    while IFS= read -r source; do
      preset_of[$source]=$preset
    done < <(sed -n "s,^ *\"file\": \"$root/\(.*\)\".*,\1,p" build/$preset/compile_commands.json | grep -v '^build/')
  done
  for source in "${!preset_of[@]}"; do
    echo "build/${preset_of[$source]} $source"
  done | sort |
    xargs -P "$(nproc)" -n 2 clang-tidy --quiet --extra-arg=-Wno-unknown-warning-option -p 2> >(grep -v ' warnings\{0,1\} generated' >&2)
}

lint_headers() { build_preset dev --tests headers_alone; }

# Ignores variables of sourced files that seem unused or never set: the files share them with the scripts that
# source them.
lint_shell() {
  local file scripts=() sourced=()
  while IFS= read -r file; do
    case $(head -c 40 "$file" | tr -d '\0') in
      '#!/bin/bash'*) scripts+=("$file") ;;
      '# shellcheck shell='*) sourced+=("$file") ;;
    esac
  done < <(git ls-files)
  shellcheck -x "${scripts[@]}"
  shellcheck -x -e SC2034,SC2154 "${sourced[@]}"
}

# Compiles each folder by itself, as CMake does.
lint_java() {
  local folder class_path=$java_libraries
  class_path+=:$build/java/orlu-service.jar:$build/java/orlu-host-framework.jar:/usr/share/java/junit4.jar
  build_preset dev --tests orlu-tests
  for folder in host/java service/java tests/java tests/tool fuzz/java; do
    mapfile -t sources < <(git ls-files "$folder/*.java")
    ecj --release 17 -proc:none -d none -properties scripts/ecj.prefs \
      -cp "$class_path" "${sources[@]}"
  done
}

# The test android_bp compares Android.bp with CMake's sources. This function checks the formatting of
# Android.bp and the test's own parser, which must find the same modules as the platform's parser.
lint_android_bp() {
  local unformatted
  unformatted=$(bpfmt -l Android.bp)
  if [ -n "$unformatted" ]; then
    bpfmt -d Android.bp
    die "Android.bp is not formatted; run bpfmt -w Android.bp"
  fi
  diff <(python3 tests/product/android_bp_test.py --read Android.bp) \
    <(GO111MODULE=off GOPATH=/usr/share/gocode GOCACHE=$root/build/go-cache \
      go run tests/product/read_android_bp.go Android.bp)
}

install_missing "to run static checks" "${run_packages[@]}" "${test_packages[@]}" "${lint_packages[@]}"
for check in "${@:-${checks[@]}}"; do
  echo "== Lint: $check"
  "lint_$check"
done
