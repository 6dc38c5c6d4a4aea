#!/bin/bash
# Runs the kit on a phone, switches recording there, and fetches recordings, over adb.
set -euo pipefail

readonly usage="usage: scripts/phone.sh COMMAND [ARGUMENT...]

  conform KIT LIBRARY [OPTION...]
                     push the kit and an algorithm library to the phone, and run the kit there
  record on DIR      make the service record its requests into DIR, a folder of the phone
  record off         stop recording
  events on FILE     make the probe write its events to FILE, a file of the phone
  events off         stop writing events
  pull PATH DIR      fetch recordings or events of the phone into DIR, a folder of this
                     machine that contains nothing of the same name
  status             print the settings of \"record\" and \"events\"

KIT is orlu-conform of Android.bp, or kit/conform_kit of the preset android with the
NDK's libc++_shared.so beside it. The kits of ./run sdk run only on Linux.
ORLU_PHONE_FOLDER is the kit's folder on the phone (default: /data/local/tmp/orlu).
ANDROID_SERIAL selects one of several phones. \"record\" and \"events\" set properties,
which needs adb root; restart the service afterwards.

This script has never run with a real phone: its tests use a stand-in for adb."

readonly folder=${ORLU_PHONE_FOLDER:-/data/local/tmp/orlu}
readonly record_property=persist.vendor.orlu.record
readonly events_property=persist.vendor.orlu.events

die() {
  echo "phone.sh: error: $*" >&2
  exit 2
}

# takes COUNT ARGUMENT...: exits with an error if the number of arguments is not COUNT.
takes() {
  [ $(($# - 1)) -eq "$1" ] || die "$command takes $1 arguments, not $(($# - 1)); see --help"
}

# one_phone: selects the ready phone that ANDROID_SERIAL names. If ANDROID_SERIAL is unset, selects the only
# ready phone; adb's own selection would also count phones that are not ready. Exits with an error if there is
# no such phone, or more than one.
one_phone() {
  local ready=() others=() serial state listing
  command -v adb >/dev/null || die "needs adb: apt-get install adb"
  listing=$(adb devices) || die "adb devices failed: see above"
  while IFS=$'\t' read -r serial state; do
    if [ "$state" = device ]; then
      ready+=("$serial")
    elif [ -n "$state" ]; then
      others+=("$serial ($state)")
    fi
  done <<<"${listing//$'\r'/}"
  if [ -n "${ANDROID_SERIAL:-}" ]; then
    for serial in "${ready[@]}"; do
      [ "$serial" != "$ANDROID_SERIAL" ] || return 0
    done
    die "ANDROID_SERIAL is $ANDROID_SERIAL, which is not ready; ready: ${ready[*]:-none}" \
      "${others[*]:+(others: ${others[*]})}"
  elif [ ${#ready[@]} -eq 0 ]; then
    die "no phone is ready${others[*]:+; found ${others[*]}}: connect one and allow USB debugging"
  elif [ ${#ready[@]} -gt 1 ]; then
    die "several phones are ready: set ANDROID_SERIAL to one of ${ready[*]}"
  fi
  export ANDROID_SERIAL=${ready[0]}
}

# call_adb ARGUMENT...: runs adb. If adb fails, exits with status 2, because 1 means that a check of the kit
# failed.
call_adb() { adb "$@" || die "adb $1 failed: see above; is $ANDROID_SERIAL still connected?"; }

# quoted WORD...: quotes the words for a shell.
quoted() { printf '%q ' "$@"; }

in_shell() { call_adb shell "$(quoted "$@")"; }

# property NAME: prints the value of this system property of the phone.
property() {
  local value
  value=$(in_shell getprop "$1") || exit
  echo "${value%$'\r'}"
}

# set_property NAME VALUE: sets a system property; exits with an error if the phone rejects it.
set_property() {
  local value
  in_shell setprop "$1" "$2"
  value=$(property "$1") || exit
  [ "$value" = "$2" ] || die "can't set $1: run adb root"
}

# switch PROPERTY on VALUE | off
switch() {
  case ${2:-} in
    on)
      takes 2 "${@:2}"
      [[ $3 == /* ]] || die "$3: not an absolute path on the phone"
      [ "$(printf %s "$3" | wc -c)" -le 91 ] || die "$3: longer than a property can be (91 bytes)"
      one_phone
      set_property "$1" "$3"
      ;;
    off)
      takes 1 "${@:2}"
      one_phone
      set_property "$1" ""
      ;;
    *) die "$command takes on or off; see --help" ;;
  esac
}

run_kit() {
  local kit library file runtime status=0
  for file in "$1" "$2"; do
    [ -f "$file" ] || die "$file: no such file"
  done
  # Absolute, so that a name that starts with - is not taken as an option.
  kit=$(realpath -- "$1")
  library=$(realpath -- "$2")
  one_phone
  in_shell mkdir -p "$folder"
  call_adb push "$kit" "$folder/conform"
  call_adb push "$library" "$folder/liborlu.vac.interface.so"
  runtime=$(dirname -- "$kit")/libc++_shared.so
  [ ! -f "$runtime" ] || call_adb push "$runtime" "$folder/libc++_shared.so"
  in_shell chmod 755 "$folder/conform"
  adb shell "$(quoted env "LD_LIBRARY_PATH=$folder" "$folder/conform" "$folder/liborlu.vac.interface.so" "${@:3}")" || status=$?
  # If the connection breaks, adb exits with 1, as the kit does after a failed check.
  [ "$status" -eq 0 ] || [ "$(adb get-state 2>/dev/null)" = device ] ||
    die "$ANDROID_SERIAL was disconnected while the kit ran"
  return "$status"
}

# pull PATH DIR: copies PATH to DIR/NAME, where NAME is the last part of PATH. DIR/NAME must not exist, so
# that recordings of two pulls never mix. It is created only if adb copies everything.
pull() {
  local name to
  [[ $1 == /* ]] || die "$1: not an absolute path on the phone"
  name=$(basename -- "$1")
  to=$(realpath -m -- "$2")/$name
  [ ! -e "$to" ] || die "$to already exists: name another folder"
  one_phone
  mkdir -p "${to%/*}" || die "$2: can't make this folder"
  rm -rf "$to.partial"
  if ! adb pull "$1" "$to.partial"; then
    rm -rf "$to.partial"
    die "adb pull failed: see above; is $ANDROID_SERIAL still connected?"
  fi
  mv "$to.partial" "$to"
}

command=${1:---help}
case $command in
  --help) echo "$usage" ;;
  conform)
    [ $# -ge 3 ] || die "conform takes a kit and a library; see --help"
    run_kit "${@:2}"
    ;;
  record) switch "$record_property" "${@:2}" ;;
  events) switch "$events_property" "${@:2}" ;;
  pull)
    takes 2 "${@:2}"
    pull "$2" "$3"
    ;;
  status)
    takes 0 "${@:2}"
    one_phone
    for name in "$record_property" "$events_property"; do
      value=$(property "$name") || exit
      echo "$name: $value"
    done
    ;;
  *) die "unknown command $command; see --help" ;;
esac
