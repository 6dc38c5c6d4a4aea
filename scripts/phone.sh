#!/bin/bash
# Puts the tools on a phone and fetches what they made, over adb.
set -euo pipefail

readonly usage="usage: scripts/phone.sh COMMAND [ARGUMENT...]

  conform KIT LIBRARY [OPTION...]
                     push the kit and an algorithm library to the phone, and run the kit there
  record on DIR      make the service record its requests into DIR, a folder of the phone
  record off         stop that
  events on FILE     make the probe write its events to FILE, a file of the phone
  events off         stop that
  pull PATH DIR      fetch recordings or events into DIR, a folder here
  status             what is switched on

KIT is orlu-conform of Android.bp, or of the preset android: the kit of ./run sdk is for
Linux. ORLU_PHONE_FOLDER is where the kit is put (/data/local/tmp/orlu). ANDROID_SERIAL
names the phone when several are there. The service must be started anew after \"record\"
and \"events\"; setting their properties needs adb root.

No phone was at hand when this was written: it is tested against a stand-in for adb."

readonly folder=${ORLU_PHONE_FOLDER:-/data/local/tmp/orlu}
readonly record_property=persist.vendor.orlu.record
readonly events_property=persist.vendor.orlu.events

die() {
  echo "phone.sh: $*" >&2
  exit 2
}

# takes COUNT ARGUMENT...: ends the script when there are fewer or more.
takes() {
  [ $(($# - 1)) -eq "$1" ] || die "$command takes $1 arguments, not $(($# - 1)); see --help"
}

# one_phone: ends the script unless adb will talk to one phone.
one_phone() {
  local phones=() odd=() serial state
  command -v adb >/dev/null || die "needs adb: apt-get install adb"
  while read -r serial state _; do
    if [ "$state" = device ]; then
      phones+=("$serial")
    elif [ -n "$state" ]; then
      odd+=("$serial ($state)")
    fi
  done < <(adb devices | tail -n +2)
  if [ -n "${ANDROID_SERIAL:-}" ]; then
    [[ " ${phones[*]} " == *" $ANDROID_SERIAL "* ]] ||
      die "ANDROID_SERIAL is $ANDROID_SERIAL; ready are: ${phones[*]:-none} ${odd[*]}"
  elif [ ${#phones[@]} -eq 0 ]; then
    die "no phone is ready${odd[*]:+, but there is ${odd[*]}}: connect one and allow USB debugging"
  elif [ ${#phones[@]} -gt 1 ]; then
    die "several phones are ready: set ANDROID_SERIAL to one of ${phones[*]}"
  fi
}

# in_shell WORD...: runs a command on the phone, each word as it is.
in_shell() { adb shell "$(printf '%q ' "$@")"; }

# set_property NAME VALUE: a property that the phone did not take is an error.
set_property() {
  in_shell setprop "$1" "$2"
  [ "$(in_shell getprop "$1" | tr -d '\r')" = "$2" ] || die "the phone did not take $1: adb root"
}

# switch PROPERTY on VALUE | off
switch() {
  case ${2:-} in
    on)
      takes 2 "${@:2}"
      [[ $3 == /* ]] || die "$3: names no place on the phone, which begins with /"
      [ ${#3} -le 91 ] || die "$3: longer than a property takes, 91 bytes"
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
  local kit=$1 library=$2
  for file in "$kit" "$library"; do
    [ -f "$file" ] || die "$file: no such file"
  done
  one_phone
  in_shell mkdir -p "$folder"
  adb push "$kit" "$folder/conform"
  adb push "$library" "$folder/liborlu.vac.interface.so"
  in_shell chmod 755 "$folder/conform"
  in_shell "$folder/conform" "$folder/liborlu.vac.interface.so" "${@:3}"
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
    one_phone
    mkdir -p "$3"
    adb pull "$2" "$3"
    ;;
  status)
    takes 0 "${@:2}"
    one_phone
    for property in "$record_property" "$events_property"; do
      echo "$property: $(in_shell getprop "$property" | tr -d '\r')"
    done
    ;;
  *) die "unknown command $command; see --help" ;;
esac
