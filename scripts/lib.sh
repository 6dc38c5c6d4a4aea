# shellcheck shell=bash
# Shared by ./run, ./test, .ci/run and the scripts beside them: packages, and where Java is. To be sourced by
# bash with "pipefail" set; the caller sets root to this project's folder.

# What ./run takes: compiler, build tools, JDK, and the libraries of the host layer.
readonly run_packages=(
  cmake ninja-build pkg-config g++ openjdk-17-jdk-headless
  libjackson2-core-java libpicocli-java libmetadata-extractor-java
  libturbojpeg0-dev libexif-dev libraw-dev nlohmann-json3-dev
)
# The libraries of its Java half.
java_libraries=/usr/share/java/jackson-core.jar:/usr/share/java/picocli.jar
java_libraries+=:/usr/share/java/metadata-extractor.jar:/usr/share/java/xmpcore.jar
readonly java_libraries
# What the tests take beside that: their libraries, and the tools that look into files.
readonly test_packages=(libgtest-dev junit4 binutils python3 python3-jsonschema)
# The cross compiler, and what runs its programs here. What they link and load comes from the private root.
readonly arm_packages=(g++-arm-linux-gnueabihf qemu-user-static)
# What the ARM build of clang takes besides; GoogleTest as source, to be built with libc++.
readonly arm_clang_packages=(clang lld llvm googletest)
# The platform's own headers, as far as Debian has them.
readonly platform_packages=(
  android-libnativehelper-dev android-liblog-dev android-libcutils-dev android-libutils-dev
  android-platform-frameworks-native-headers android-platform-system-core-headers librust-libc-dev
)
# What libFuzzer and coverage take besides.
readonly fuzz_packages=(clang libclang-rt-14-dev)
readonly coverage_packages=(gcovr)
# What scripts/lint.sh takes besides ./test: a checker for each language.
readonly lint_packages=(
  clang-tidy shellcheck ecj blueprint-tools golang-go golang-github-google-blueprint-dev git
)

# Patient while somebody else installs something.
readonly apt_options=(-q -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3)

# die TEXT...: one line on standard error, and the end.
die() {
  echo "${0##*/}: error: $*" >&2
  exit 1
}

# as_root COMMAND...: runs it through sudo where that is needed.
as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    die "needs root or sudo for: $*"
  fi
}

# follow LOG PATTERN: copies standard input to the end of LOG. Of the lines that match the pattern, a terminal
# shows the latest, in one line that is rewritten and cleared at the end; elsewhere one goes out every ten
# seconds.
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

# Name and version of every package of this machine's architecture, a line each; empty until it is asked for.
installed_packages=

# read_installed_packages: fills installed_packages, in one query for all of them.
read_installed_packages() {
  if [ -z "$installed_packages" ] && command -v dpkg-query >/dev/null; then
    installed_packages=$(dpkg-query -W -f '${db:Status-Abbrev}${Architecture} ${Package} ${Version}\n' |
      sed -nE "s/^ii ($(dpkg --print-architecture)|all) //p")
  fi
}

# are_installed PACKAGE...: whether all of them are. The others are in the array missing.
are_installed() {
  local package
  missing=()
  read_installed_packages
  for package in "$@"; do
    [[ $'\n'$installed_packages == *$'\n'"$package "* ]] || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ]
}

# apt_get ARGUMENT...: changes packages of this machine; what apt-get says is shown in full only when it
# fails.
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

# install_missing PURPOSE PACKAGE...: installs those of the Debian packages that are not there. Says so in one
# line; silent when all are there.
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

# debian_java_home [ROOT]: prints where Debian's Java 17 lies, below ROOT when it is named; also when another
# Java is the machine's default.
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
