# A private root with Debian's 32-bit ARM JVM and the libraries that the build links: fetched and unpacked once, into
# the user's cache folder. Nothing of it is installed on this machine, and nothing in it needs root. To be sourced.

# What the root holds; a change makes a new one.
ARM_ROOT_PACKAGES="openjdk-17-jre-headless libturbojpeg0-dev libexif-dev nlohmann-json3-dev libgtest-dev libgmock-dev libstdc++6"

# Prints where the root is, or will be.
arm_root_path() {
  local key
  key=$(printf '%s' "$ARM_ROOT_PACKAGES" | cksum | cut -d ' ' -f 1)
  printf '%s\n' "${XDG_CACHE_HOME:-$HOME/.cache}/orlu-vas/armhf-$key"
}

# Runs apt-get for armhf with folders of its own below $1, from the sources that this machine has.
arm_apt() {
  local work=$1
  shift
  apt-get -qq \
    -o APT::Architecture=armhf -o APT::Architectures::=armhf -o APT::Install-Recommends=false \
    -o APT::Sandbox::User="$(id -un)" -o Debug::NoLocking=true \
    -o Dir::State="$work/state" -o Dir::State::status="$work/status" -o Dir::Cache="$work/cache" "$@"
}

# Makes the root unless it is there. Fails, with apt-get's own words, when a package can't be fetched.
fetch_arm_root() {
  local root work archive
  root=$(arm_root_path)
  [ -e "$root/.complete" ] && return 0
  echo "Fetching Debian's 32-bit ARM JVM, once, into $root: the ARM library is run in it." >&2
  work=$root.fetch
  rm -rf "$root" "$work"
  mkdir -p "$root" "$work/state/lists/partial" "$work/cache/archives/partial"
  : > "$work/status"
  # Sources without armhf only cost a warning; a package that then is not there stops the next step.
  arm_apt "$work" update >"$work/update.log" 2>&1 || true
  # shellcheck disable=SC2086  # a list of packages
  arm_apt "$work" -y --download-only install $ARM_ROOT_PACKAGES >&2 || return 1
  for archive in "$work"/cache/archives/*.deb; do
    dpkg-deb -x "$archive" "$root" || return 1
  done
  rm -rf "$work"
  touch "$root/.complete"
}
