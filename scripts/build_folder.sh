# shellcheck shell=bash
# Keeps a preset's folder below build/ up to date. Sourced by lib.sh.
#
# Ninja finds what changed, and runs CMake again when one of its files did. What Ninja does not see is
# compared here, with what the last build left in the folder:
#   setup.txt      the checkout's place, the presets and the switches that CMake was run with
#   packages.txt   the versions of what compiles and of what is compiled in
#   built          its date is the start of the last build that went well
#   build.log      what CMake and Ninja said

# The packages whose files go into what is built: compilers, the JDK, headers and jars.
readonly libraries='(lib(c\+\+|stdc\+\+|c6|clang-rt|exif|raw|turbojpeg|gtest|benchmark)|nlohmann-json3)[^ ]*-dev[^ ]*'
readonly compiled_in="^(cmake|g\\+\\+[^ ]*|clang(-[0-9]+)?|openjdk-17-j[dr][ek]-headless|libjackson2-core-java|$libraries) "

# start_afresh FOLDER REASON: says so, and throws away what was built.
start_afresh() {
  echo "${2}: setting up build/${1##*/} afresh" >&2
  rm -rf "$1"
}

# discard_strange FOLDER: what was built elsewhere, or with other packages, is not built on.
discard_strange() {
  local folder=$1 home gone
  home=$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$folder/CMakeCache.txt")
  if [ ! "$home" -ef "$root" ]; then
    start_afresh "$folder" "This checkout was moved or copied from $home"
  elif [ -e "$folder/packages.txt" ]; then
    gone=$(grep -vxF -f <(grep -E "$compiled_in" <<<"$installed_packages") "$folder/packages.txt" || true)
    [ -z "$gone" ] || start_afresh "$folder" "There is no longer ${gone//$'\n'/, }"
  fi
}

# tests_of FOLDER: ON when the tests were configured there and can still be; ./run does not take them away
# from somebody who also runs ./test.
tests_of() {
  local missing
  if grep -qs '^ORLU_TESTS:BOOL=ON' "$1/CMakeCache.txt" && are_installed "${test_packages[@]}"; then
    echo ON
  else
    echo OFF
  fi
}

# setup_of TESTS: all that decides what CMake makes of a preset, but for CMake's own files.
setup_of() {
  printf 'root %s\ntests %s\nORLU_ARM_ROOT %s\nANDROID_NDK_HOME %s\n' \
    "$(cd "$root" && pwd -P)" "$1" "${ORLU_ARM_ROOT:-}" "${ANDROID_NDK_HOME:-}"
  cat "$root"/CMake*Presets.json
}

# touch_older FOLDER: a source that was replaced by one with an older date (cp -p, mv, tar) looks unchanged to
# Ninja.
touch_older() {
  if [ -e "$1/built" ]; then
    find "$root" \( -path "$root/build" -o -path "$root/out" -o -path "$root/.git" \) -prune -o \
      -type f -cnewer "$1/built" ! -newer "$1/built" -exec touch {} +
  fi
}

# configure PRESET TESTS SETUP: runs CMake unless it ran with this setup. --fresh forgets what another setup
# left in CMake's cache, and keeps what is compiled.
configure() {
  local folder=$root/build/$1
  if [ -e "$folder/build.ninja" ] && [ -e "$folder/CMakeCache.txt" ] &&
    [ "$3" = "$(cat "$folder/setup.txt" 2>/dev/null)" ]; then
    return
  fi
  rm -f "$folder/setup.txt"
  (cd "$root" && cmake --fresh --preset "$1" -DORLU_TESTS="$2") >>"$folder/build.log" 2>&1 || return 1
  printf '%s\n' "$3" >"$folder/setup.txt"
}

# compile FOLDER TARGET...: runs Ninja. That it looks for new files each time is not worth a line.
compile() {
  local folder=$1
  shift
  touch_older "$folder"
  touch "$folder/building"
  NINJA_STATUS='[%f/%t] ' ninja -C "$folder" "$@" 2>&1 |
    follow "$folder/build.log" '^\[[0-9]+/[0-9]+\] ([^R]|R[^e]|Re[^-])' || return 1
  mv "$folder/building" "$folder/built"
}

# build_preset PRESET [--tests] [TARGET...]: brings build/PRESET up to date, all of it when no target is
# named. The tests are configured with --tests, or when they were before. What CMake and Ninja say is shown in
# full only when the build fails. Two builds of a preset wait for each other.
build_preset() {
  local preset=$1 folder=$root/build/$1 tests='' setup lock
  shift
  if [ "${1:-}" = --tests ]; then
    tests=ON
    shift
  fi
  mkdir -p "$root/build"
  exec {lock}>"$folder.lock"
  if ! flock -n "$lock"; then
    echo "Waiting for another build of $preset" >&2
    flock "$lock"
  fi
  read_installed_packages
  [ ! -e "$folder/CMakeCache.txt" ] || discard_strange "$folder"
  [ -n "$tests" ] || tests=$(tests_of "$folder")
  setup=$(setup_of "$tests")
  if [ ! -e "$folder/build.ninja" ]; then
    echo "Building $preset; the first time takes a minute or two" >&2
  fi
  mkdir -p "$folder"
  : >"$folder/build.log"
  if ! { configure "$preset" "$tests" "$setup" && compile "$folder" "$@"; }; then
    cat "$folder/build.log" >&2
    die "the build of $preset failed"
  fi
  grep -E "$compiled_in" <<<"$installed_packages" >"$folder/packages.txt" || true
  exec {lock}>&-
}
