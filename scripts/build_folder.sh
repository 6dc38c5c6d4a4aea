# shellcheck shell=bash
# Keeps the build folder of a preset up to date. Sourced by lib.sh.
#
# Ninja detects changed files, and runs CMake again if one of CMake's input files changed. This script detects
# all other changes, with the first three of the files that a build leaves in the folder:
#   setup.txt      path of the checkout, presets and options of CMake
#   packages.txt   versions of the packages that compile or are compiled in
#   built          marker, dated at the start of the last successful build
#   build.log      output of CMake and Ninja

# Packages with files that go into the build: compilers, the JDK, headers and jars.
readonly libraries='(lib(c\+\+|stdc\+\+|c6|clang-rt|exif|raw|turbojpeg|gtest|benchmark)|nlohmann-json3)[^ ]*-dev[^ ]*'
readonly compiled_in="^(cmake|g\\+\\+[^ ]*|clang(-[0-9]+)?|openjdk-17-j[dr][ek]-headless|libjackson2-core-java|$libraries) "

# start_afresh FOLDER REASON: reports the reason and deletes the build.
start_afresh() {
  echo "${2}; setting up build/${1##*/} from scratch" >&2
  rm -rf "$1"
}

# discard_strange FOLDER: deletes the build if it belongs to another checkout, or if a package that it used is
# no longer installed in the same version.
discard_strange() {
  local folder=$1 home gone
  home=$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$folder/CMakeCache.txt")
  if [ ! "$home" -ef "$root" ]; then
    start_afresh "$folder" "This checkout was moved or copied from $home"
  elif [ -e "$folder/packages.txt" ]; then
    gone=$(grep -vxF -f <(grep -E "$compiled_in" <<<"$installed_packages") "$folder/packages.txt" || true)
    [ -z "$gone" ] || start_afresh "$folder" "No longer installed: ${gone//$'\n'/, }"
  fi
}

# tests_of FOLDER: prints ON if the tests are configured there and their packages are installed, else OFF.
# Thus ./run keeps the tests that ./test configured.
tests_of() {
  local missing
  if grep -qs '^ORLU_TESTS:BOOL=ON' "$1/CMakeCache.txt" && are_installed "${test_packages[@]}"; then
    echo ON
  else
    echo OFF
  fi
}

# setup_of TESTS: prints everything that CMake's configuration depends on, except files that Ninja watches.
setup_of() {
  printf 'root %s\ntests %s\nORLU_ARM_ROOT %s\nANDROID_NDK_HOME %s\n' \
    "$(cd "$root" && pwd -P)" "$1" "${ORLU_ARM_ROOT:-}" "${ANDROID_NDK_HOME:-}"
  cat "$root"/CMake*Presets.json
}

# touch_older FOLDER: updates the dates of sources that were replaced by older files (cp -p, mv, tar) since
# the last build. Otherwise, Ninja would consider these sources unchanged.
touch_older() {
  if [ -e "$1/built" ]; then
    find "$root" \( -path "$root/build" -o -path "$root/out" -o -path "$root/.git" \) -prune -o \
      -type f -cnewer "$1/built" ! -newer "$1/built" -exec touch {} +
  fi
}

# configure PRESET TESTS SETUP: runs CMake if SETUP (the output of setup_of) changed since the last run of
# CMake, or if that run's output is missing. --fresh clears CMake's cache but keeps compiled files.
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

# compile FOLDER TARGET...: runs Ninja. Hides the line that each build prints about checking for new files.
compile() {
  local folder=$1
  shift
  touch_older "$folder"
  touch "$folder/building"
  NINJA_STATUS='[%f/%t] ' ninja -C "$folder" "$@" 2>&1 |
    follow "$folder/build.log" '^\[[0-9]+/[0-9]+\] ([^R]|R[^e]|Re[^-])' || return 1
  mv "$folder/building" "$folder/built"
}

# build_preset PRESET [--tests] [TARGET...]: builds the targets (by default, all) in build/PRESET. Configures
# the tests if --tests is given or tests_of prints ON. Prints progress; if the build fails, prints all output
# of CMake and Ninja. Concurrent builds of a preset wait for each other.
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
