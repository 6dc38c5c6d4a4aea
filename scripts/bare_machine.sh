#!/bin/bash
# Runs commands of this project on a bare Debian 12: a minimal root file system, a clean clone of the last
# commit, and only the proxy settings of this machine's environment. Fails if a command fails or ./run writes
# no picture.
#   scripts/bare_machine.sh              ./run and then ./test
#   scripts/bare_machine.sh --all        also fuzz/all, bench/run --quick and ./test --arm, each in its own root
#   scripts/bare_machine.sh './run samples/capture.json; fuzz/soak --requests 1000' ...
#                                        the commands of each argument in one root
# Needs root rights to mount /proc and /dev. The mounts are in a private mount namespace, which disappears
# with its last process. So nothing stays mounted, and nothing is mounted when the root is deleted.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$root/scripts/lib.sh"

readonly release=bookworm
readonly first_commands='./run; ./test'
readonly further_commands=(fuzz/all 'bench/run --quick' './test --arm')
# The minimal root as downloaded; replaced after a month.
readonly archive=${XDG_CACHE_HOME:-$HOME/.cache}/orlu-vas/$release-minbase.tar

work=
child=

# clean_up: kills the processes in the root and deletes the root. The mounts disappear with the processes.
clean_up() {
  trap '' INT TERM
  if [ -n "$child" ]; then
    kill -KILL "$child" 2>/dev/null || true
    wait "$child" 2>/dev/null || true
  fi
  local attempt
  for attempt in 1 2 3 4 5; do
    # rm may fail while killed processes are still exiting and writing.
    if [ -z "$work" ] || rm -rf --one-file-system "$work"; then
      return
    fi
    sleep "$attempt"
  done
}

# isolated COMMAND...: runs the command in its own mount and process namespaces. When the command or this
# script exits, all of the command's processes are killed.
isolated() {
  setpriv --pdeathsig KILL unshare --mount --propagation private --pid --fork --kill-child "$@" &
  child=$!
  local status=0
  wait "$child" || status=$?
  child=
  return "$status"
}

# mirror: prints the URL of this machine's source of Debian 12.
mirror() {
  # shellcheck disable=SC2016 # apt-get's words, not the shell's
  apt-get indextargets --format '$(CODENAME) $(COMPONENT) $(REPO_URI)' 'Created-By: Packages' |
    sed -n "s/^$release main //p" | head -n 1
}

# fetch_archive: downloads the minimal root if it is missing or old, and renames it when complete.
fetch_archive() {
  local from
  if [ -n "$(find "$archive" -mtime -30 2>/dev/null)" ]; then
    return
  fi
  from=$(mirror)
  [ -n "$from" ] || die "this machine's package sources do not contain Debian 12 ($release)"
  echo "Downloading a minimal Debian 12, into $archive" >&2
  mkdir -p "${archive%/*}"
  if ! isolated debootstrap --variant=minbase "$release" "$work/minimal" "$from" >"$work/debootstrap.log" 2>&1; then
    cat "$work/debootstrap.log" >&2
    die "debootstrap failed"
  fi
  tar -C "$work/minimal" --numeric-owner -cf "$archive.$$" .
  mv "$archive.$$" "$archive"
  rm -rf --one-file-system "$work/minimal"
}

# take_over_sources ROOT: copies this machine's package sources, their keys and apt's settings. Settings that
# start programs are left out, because the root lacks these programs.
take_over_sources() {
  local file
  rm -rf "$1"/etc/apt/sources.list*
  for file in /etc/apt/sources.list /etc/apt/sources.list.d /etc/apt/trusted.gpg.d /etc/apt/keyrings \
    /etc/apt/apt.conf /usr/share/keyrings; do
    [ ! -e "$file" ] || cp -aT "$file" "$1$file"
  done
  for file in /etc/apt/apt.conf.d/*; do
    grep -q Invoke "$file" || cp -L "$file" "$1/etc/apt/apt.conf.d/"
  done
  cp -L /etc/resolv.conf /etc/hosts "$1/etc/"
}

# make_root ROOT: makes a fresh copy of the minimal root with a clean clone in it.
make_root() {
  mkdir "$1"
  tar -C "$1" --numeric-owner -xf "$archive"
  take_over_sources "$1"
  git -c safe.directory='*' clone -q --no-hardlinks "$root" "$1/vas"
}

# in_root ROOT COMMAND: runs a shell command in the clone, with only the proxy settings of this machine's
# environment.
in_root() {
  # shellcheck disable=SC2016 # the inner shell expands these
  isolated sh -ec '
    mount -t proc proc "$1/proc"
    mount --rbind /dev "$1/dev"
    exec chroot "$1" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin \
      ${http_proxy:+http_proxy="$http_proxy"} ${https_proxy:+https_proxy="$https_proxy"} \
      sh -c "cd /vas && $2"' sh "$1" "$2"
}

# try_commands NUMBER COMMANDS: runs the commands in a root until one fails. Appends a line for each command
# to the file "times".
try_commands() {
  local place=$work/root$1 command commands status
  make_root "$place"
  IFS=';' read -ra commands <<<"$2"
  for command in "${commands[@]}"; do
    command=${command# }
    echo "== On a bare machine: $command"
    SECONDS=0 status=passed
    in_root "$place" "$command" || status="failed with status $?"
    if [ "$command" = ./run ] && [ ! -s "$place/vas/out/night-out0.jpg" ]; then
      status="failed: no out/night-out0.jpg"
    fi
    printf '%-24s %5d s  %s\n' "$command" "$SECONDS" "$status" | tee -a "$work/times"
    [ "$status" = passed ] || break
  done
  rm -rf --one-file-system "$place"
}

case ${1:-} in
  '') set -- "$first_commands" ;;
  --all) set -- "$first_commands" "${further_commands[@]}" ;;
  -*) die "unknown option $1; see the first lines of scripts/bare_machine.sh" ;;
esac
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || die "needs root rights to mount /proc and /dev in the bare root"
  exec sudo --preserve-env=http_proxy,https_proxy "$0" "$@"
fi
install_missing "to make a bare machine" debootstrap git
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
work=$(mktemp -d "${TMPDIR:-/var/tmp}/bare_machine.XXXXXX")
isolated chroot / true || die "mount namespaces or chroot are not allowed on this machine"
fetch_archive
number=0
for commands in "$@"; do
  try_commands "$((++number))" "$commands"
done
echo "== On a bare Debian 12 with $(nproc) cores"
cat "$work/times"
! grep -qv ' passed$' "$work/times"
