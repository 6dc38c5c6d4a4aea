# shellcheck shell=bash
# Functions and package lists shared by the project's shell scripts. Source this file in bash, with the option
# "pipefail" set and the project's folder in the variable "root".

# Needed by ./run: compiler, build tools, JDK and libraries.
readonly run_packages=(
  cmake ninja-build pkg-config g++ openjdk-17-jdk-headless
  libjackson2-core-java libpicocli-java libmetadata-extractor-java
  libturbojpeg0-dev libexif-dev libraw-dev nlohmann-json3-dev
)
# The libraries of ./run's Java code.
java_libraries=/usr/share/java/jackson-core.jar:/usr/share/java/picocli.jar
java_libraries+=:/usr/share/java/metadata-extractor.jar:/usr/share/java/xmpcore.jar
readonly java_libraries
# Also needed by the tests: their libraries, and tools that inspect files.
readonly test_packages=(libgtest-dev junit4 binutils python3 python3-jsonschema)
# The cross compiler and the emulator. arm_root.sh fetches the libraries of ARM programs.
readonly arm_packages=(g++-arm-linux-gnueabihf qemu-user-static)
# Also needed by the ARM build with clang; GoogleTest as source, to build it with libc++.
readonly arm_clang_packages=(clang lld llvm googletest)
# The platform's own headers, as packaged by Debian.
readonly platform_packages=(
  android-libnativehelper-dev android-liblog-dev android-libcutils-dev android-libutils-dev
  android-platform-frameworks-native-headers android-platform-system-core-headers librust-libc-dev
)
# Also needed for fuzzing and for coverage.
readonly fuzz_packages=(clang libclang-rt-14-dev)
readonly coverage_packages=(gcovr)
# Also needed by scripts/lint.sh.
readonly lint_packages=(
  clang-tidy shellcheck ecj blueprint-tools golang-go golang-github-google-blueprint-dev git
)

# apt-get waits up to 300 seconds for another process that is installing packages, and retries downloads.
readonly apt_options=(-q -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3)

# die TEXT...: prints an error and exits.
die() {
  echo "${0##*/}: error: $*" >&2
  exit 1
}

# as_root COMMAND...: runs the command, through sudo if necessary.
as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    die "needs root or sudo for: $*"
  fi
}

# follow LOG PATTERN: appends standard input to LOG, and shows lines that match the pattern on standard error.
# On a terminal, each such line replaces the previous one, and the last is cleared at the end. Elsewhere, at
# most one such line is printed every ten seconds.
follow() {
  local pattern=$2 line shown=$SECONDS clear=''
  while IFS= read -r line; do
    printf '%s\n' "$line" >&3
    if [[ ! $line =~ $pattern ]]; then
      continue
    elif [ -t 2 ]; then
      printf '\r\e[K%.*s' "$((${COLUMNS:-80} - 1))" "$line" >&2
      clear=$'\r\e[K'
    elif ((SECONDS - shown >= 10)); then
      printf '%s\n' "$line" >&2
      shown=$SECONDS
    fi
  done 3>>"$1"
  printf %s "$clear" >&2
}

# Name and version of each installed package whose architecture is this machine's or "all", one per line;
# empty until needed.
installed_packages=

read_installed_packages() {
  if [ -z "$installed_packages" ] && command -v dpkg-query >/dev/null; then
    installed_packages=$(dpkg-query -W -f '${db:Status-Abbrev}${Architecture} ${Package} ${Version}\n' |
      sed -nE "s/^ii ($(dpkg --print-architecture)|all) //p")
  fi
}

# are_installed PACKAGE...: succeeds if all are installed. Lists the uninstalled ones in the array "missing".
are_installed() {
  local package
  missing=()
  read_installed_packages
  for package in "$@"; do
    [[ $'\n'$installed_packages == *$'\n'"$package "* ]] || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ]
}

# apt_get ARGUMENT...: runs apt-get and shows its progress; if it fails, prints its whole output and exits.
apt_get() {
  local log
  log=$(mktemp)
  if ! as_root env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 apt-get "${apt_options[@]}" "$@" 2>&1 </dev/null |
    follow "$log" '^(Get:|Unpacking|Setting up|Processing)'; then
    cat "$log" >&2
    rm -f "$log"
    die "apt-get failed"
  fi
  rm -f "$log"
}

# install_missing PURPOSE PACKAGE...: installs the Debian packages that are missing, and prints a line about
# them. Prints nothing if none is missing.
install_missing() {
  local purpose=$1 missing
  shift
  if are_installed "$@"; then
    return
  fi
  command -v apt-get >/dev/null || die "needs these Debian packages $purpose: ${missing[*]}"
  echo "Installing $purpose: ${missing[*]}" >&2
  apt_get update
  apt_get -y --no-install-recommends install "${missing[@]}"
  installed_packages=
}

# debian_java_home [ROOT]: prints the path of Debian's Java 17, below ROOT if given, even if another Java is
# the machine's default.
debian_java_home() {
  local home
  for home in "${1:-}"/usr/lib/jvm/java-17-openjdk-*; do
    if [ -x "$home/bin/java" ]; then
      echo "$home"
      return
    fi
  done
  die "Debian's Java 17 is missing from ${1:-}/usr/lib/jvm"
}

source "$root/scripts/build_folder.sh"
