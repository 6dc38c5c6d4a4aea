# shellcheck shell=bash
# A root file system with Debian's 32-bit ARM JVM and the libraries that the build links. It is downloaded and
# unpacked once, into the user's cache folder, without root rights. Its packages are not installed on this
# machine, and its programs run only under the emulator. Source this file after lib.sh.

# Packages in the root; apt-get adds their dependencies. A change of this list creates a new root.
readonly arm_root_packages=(
  openjdk-17-jre-headless libturbojpeg0-dev libexif-dev libraw-dev nlohmann-json3-dev libgtest-dev libstdc++6
  libc++-14-dev libc++abi-14-dev
)

# arm_root_path: prints the path of the root, whether it exists or not.
arm_root_path() {
  local key
  key=$(printf '%s ' "${arm_root_packages[@]}" | cksum)
  printf '%s\n' "${XDG_CACHE_HOME:-$HOME/.cache}/orlu-vas/armhf-${key%% *}"
}

# arm_apt FOLDER COMMAND...: runs apt-get for armhf only. Uses this machine's sources, but keeps the state and
# the cache in FOLDER.
arm_apt() {
  local work=$1
  shift
  apt-get "${apt_options[@]}" \
    -o APT::Architecture=armhf -o APT::Architectures::=armhf -o APT::Install-Recommends=false \
    -o APT::Sandbox::User="$(id -un)" -o Debug::NoLocking=true \
    -o Dir::State="$work/state" -o Dir::State::status="$work/status" -o Dir::Cache="$work/cache" "$@"
}

# unpack_arm_root FOLDER ROOT: downloads the packages and unpacks them into ROOT.
unpack_arm_root() {
  local work=$1 target=$2 archive
  mkdir -p "$target" "$work/state/lists/partial" "$work/cache/archives/partial"
  : >"$work/status"
  # Errors are ignored here, because some sources may offer no armhf packages. If a package is missing as a
  # result, the next step fails.
  arm_apt "$work" update >"$work/update.log" 2>&1 || true
  if ! arm_apt "$work" -y --download-only install "${arm_root_packages[@]}" >"$work/install.log" 2>&1; then
    cat "$work/update.log" "$work/install.log" >&2
    return 1
  fi
  for archive in "$work"/cache/archives/*.deb; do
    dpkg-deb -x "$archive" "$target" || return 1
  done
  make_links_relative "$target"
}

# make_links_relative ROOT: makes absolute symbolic links relative, because they would lead out of ROOT.
make_links_relative() {
  local link
  while IFS= read -r -d '' link; do
    ln -srfnT "$1$(readlink "$link")" "$link"
  done < <(find "$1" -type l -lname '/*' -print0)
}

# fetch_arm_root: creates the root if it is missing. It gets its final path only when it is complete. The
# remains of an interrupted download are deleted first. Concurrent calls wait for each other.
fetch_arm_root() {
  local path work lock
  path=$(arm_root_path)
  if [ -d "$path" ]; then
    return
  fi
  work=$path.fetch
  mkdir -p "${path%/*}"
  exec {lock}>"$path.lock"
  flock "$lock"
  if [ ! -d "$path" ]; then
    echo "Fetching Debian's 32-bit ARM JVM, once, into $path; the ARM library runs in it" >&2
    rm -rf "$work"
    unpack_arm_root "$work" "$work/root" || die "the 32-bit ARM root could not be fetched"
    mv "$work/root" "$path"
    rm -rf "$work"
  fi
  exec {lock}>&-
}

# prepare_arm: installs the cross compiler and the emulator, makes the root, and passes its path to CMake.
prepare_arm() {
  install_missing "to build and run the 32-bit ARM library" "${arm_packages[@]}"
  fetch_arm_root
  ORLU_ARM_ROOT=$(arm_root_path)
  export ORLU_ARM_ROOT
}
