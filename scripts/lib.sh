# shellcheck shell=bash
# Shared by ./run, ./test and .ci/run. To be sourced by bash; the caller sets root to this project's folder.

# What building takes: compiler, build tools, JDK, and the libraries of the host layer and the tests.
readonly build_packages=(
  cmake ninja-build pkg-config g++ openjdk-17-jdk-headless
  libgoogle-gson-java libturbojpeg0-dev libexif-dev nlohmann-json3-dev libgtest-dev
)
# What the tests take beside that: the tools that look into files.
readonly test_packages=(binutils python3)
# The cross compiler, and what runs its programs here. What they link and load comes from the private root.
readonly arm_packages=(g++-arm-linux-gnueabihf qemu-user-static)

# Quiet, and patient while somebody else installs something.
readonly apt_options=(-qq -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3)

# What libFuzzer and coverage take besides.
readonly fuzz_packages=(clang libclang-rt-14-dev)
readonly coverage_packages=(gcovr)

# die TEXT...: one line on standard error, and the end.
die() {
  echo "${0##*/}: $*" >&2
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

is_installed() {
  [ "$(dpkg-query -W -f '${db:Status-Abbrev}' "$1" 2>/dev/null)" = "ii " ]
}

# install_missing PURPOSE PACKAGE...: installs those of the Debian packages that are not there. Says so in one
# line; silent when all are there.
install_missing() {
  local purpose=$1 package
  local missing=()
  shift
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  if [ ${#missing[@]} -eq 0 ]; then
    return
  fi
  command -v apt-get >/dev/null || die "needs these Debian packages $purpose: ${missing[*]}"
  echo "Installing $purpose: ${missing[*]}" >&2
  as_root env DEBIAN_FRONTEND=noninteractive apt-get "${apt_options[@]}" update >/dev/null
  as_root env DEBIAN_FRONTEND=noninteractive apt-get "${apt_options[@]}" -y --no-install-recommends \
    install "${missing[@]}" >/dev/null
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

# build_preset PRESET [TARGET...]: brings build/PRESET up to date, all of it when no target is named. The
# build's own output is shown only when it fails.
build_preset() {
  local preset=$1 folder=$root/build/$1 log
  shift
  log=$(mktemp)
  if [ ! -e "$folder/build.ninja" ]; then
    echo "Building $preset; the first time takes a minute or two" >&2
  fi
  if ! { (cd "$root" && cmake --preset "$preset") && cmake --build "$folder" -- "$@"; } >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    die "the build of $preset failed"
  fi
  rm -f "$log"
}
