#!/bin/bash
# Tests scripts/phone.sh with a stub of adb, which records its arguments and runs commands in this machine's
# shell.
#   phone_test.sh PROJECT
set -euo pipefail
phone=$1/scripts/phone.sh
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/bin" "$work/properties"
cat >"$work/bin/adb" <<'END'
#!/bin/bash
printf '%s|' "$@" >>"$WORK/calls"; echo >>"$WORK/calls"
setprop() { [ -e "$WORK/unrooted" ] || printf %s "$2" >"$WORK/properties/$1"; }
getprop() { [ ! -e "$WORK/properties/$1" ] || printf '%s\r\n' "$(cat "$WORK/properties/$1")"; }
gone() { echo "adb: device '${ANDROID_SERIAL:-}' not found" >&2; exit 1; }
if [ "$1" = devices ]; then
  [ "$PHONES" != broken ] || { echo "cannot connect to daemon" >&2; exit 1; }
  printf '* daemon started successfully\nList of devices attached\n%b\n\n' "$PHONES"
  exit
fi
# Like adb, the stub counts all listed devices, even those that are not ready.
if [ -z "${ANDROID_SERIAL:-}" ] && [ "$(printf '%b\n' "$PHONES" | wc -l)" -gt 1 ]; then
  echo "adb: more than one device/emulator" >&2; exit 1
fi
# The phone is unplugged at the first call that contains $VANISH.
if [ -n "${VANISH:-}" ] && [[ "$*" == *"$VANISH"* ]]; then touch "$WORK/gone"; fi
if [ -e "$WORK/gone" ]; then
  [ "$1" != pull ] || { mkdir -p "$3"; echo half >"$3/half"; }
  gone
fi
case $1 in
  get-state) echo device ;;
  shell) eval "$2" ;;
  push) cp "$2" "$3" ;;
  pull) cp -r "$2" "$3" ;;
esac
END
chmod +x "$work/bin/adb"
export WORK=$work PHONES='a1\tdevice' PATH=$work/bin:$PATH ORLU_PHONE_FOLDER="$work/on phone"
unset ANDROID_SERIAL

# expect STATUS TEXT ARGUMENT...: runs phone.sh with the arguments. Fails unless the exit status is STATUS and
# the output contains TEXT.
expect() {
  local status=0 said
  said=$("$phone" "${@:3}" 2>&1) || status=$?
  if [ "$status" -ne "$1" ] || [[ $said != *"$2"* ]]; then
    printf 'FAILED: phone.sh %s: status %s instead of %s, or no "%s" in:\n%s\n' "${*:3}" "$status" "$1" "$2" "$said"
    exit 1
  fi
}
# same TEXT FILE: fails unless the file's content is TEXT.
same() { [ "$(cat "$2")" = "$1" ] || { echo "FAILED: $2 has $(cat "$2") instead of $1"; exit 1; }; }

printf '#!/bin/bash\nprintf "<%%s>" "$@"\nexit 1\n' >"$work/kit"
echo library >"$work/library.so"
expect 1 "<$work/on phone/liborlu.vac.interface.so><--only><a b>" conform "$work/kit" "$work/library.so" --only "a b"
same library "$work/on phone/liborlu.vac.interface.so"
mkdir "$work/ndk"
echo runtime >"$work/ndk/libc++_shared.so"
printf '#!/bin/bash\nprintenv LD_LIBRARY_PATH\n' >"$work/ndk/kit"
expect 0 "$work/on phone" conform "$work/ndk/kit" "$work/library.so"
same runtime "$work/on phone/libc++_shared.so"
expect 2 "nothing.so: no such file" conform "$work/kit" nothing.so
expect 0 "" record on "/data/of it"
same "/data/of it" "$work/properties/persist.vendor.orlu.record"
expect 0 "persist.vendor.orlu.record: /data/of it" status
expect 0 "" events on /data/events
same /data/events "$work/properties/persist.vendor.orlu.events"
expect 0 "" record off
same "" "$work/properties/persist.vendor.orlu.record"
mkdir -p "$work/shots/000001"
echo "{}" >"$work/shots/000001/request.json"
expect 0 "" pull "$work/shots" "$work/here"
same "{}" "$work/here/shots/000001/request.json"
# Files of two pulls are never mixed; an interrupted pull leaves nothing.
echo "{}" >"$work/shots/000001/outcome.json"
expect 2 "$work/here/shots already exists: name another folder" pull "$work/shots/" "$work/here"
[ ! -e "$work/here/shots/000001/outcome.json" ] || { echo "FAILED: two pulls are mixed"; exit 1; }
VANISH=pull expect 2 "is a1 still connected?" pull "$work/shots" "$work/half"
rm "$work/gone"
same "" <(ls -A "$work/half")
expect 0 "" pull "$work/shots" "$work/half"
(cd "$work" && expect 0 "" pull "$work/shots" -x && [ -d ./-x/shots ])
expect 2 "adb pull failed" pull /none/such "$work/none"
expect 2 "not an absolute path on the phone" pull shots "$work/none"
(cd "$work" && cp kit "./-k it" && expect 1 "<--only>" conform "-k it" library.so --only "")
touch "$work/unrooted"
expect 2 "can't set persist.vendor.orlu.record: run adb root" record on /data/x
rm "$work/unrooted"

for wrong in "record on" "record maybe" "record on x" "pull /x" "status now" "conform kit" "rekord on /x"; do
  # shellcheck disable=SC2086
  expect 2 "phone.sh: error: " $wrong
done
expect 2 "longer than a property can be" record on "/$(printf 'x%.0s' {1..91})"
expect 2 "longer than a property can be" record on "/$(printf 'ü%.0s' {1..50})"
: >"$work/calls"
PHONES='' expect 2 "no phone is ready: connect one" status
PHONES='a1\tunauthorized' expect 2 "found a1 (unauthorized)" status
PHONES='a1\tdevice\nb2\tdevice' expect 2 "set ANDROID_SERIAL to one of a1 b2" record on /data/x
ANDROID_SERIAL=c3 expect 2 "ANDROID_SERIAL is c3, which is not ready; ready: a1" status
PHONES=broken expect 2 "adb devices failed" status
PHONES='a1\tno permissions (user in plugdev group)' expect 2 "a1 (no permissions (user in plugdev group))" status
PHONES='a1\tdevice\nb2\tdevice' ANDROID_SERIAL="a1 b2" expect 2 "ANDROID_SERIAL is a1 b2" status
same "devices|devices|devices|devices|devices|devices|devices|" <(tr -d '\n' <"$work/calls")
PHONES='a1\tdevice\nb2\tdevice' ANDROID_SERIAL=b2 expect 0 "" status
PHONES='a1\tdevice\r\n' expect 0 "" status
# Devices that are not ready don't block a ready device.
PHONES='a1\toffline\n192.168.0.7:5555\tdevice\nc3\tunauthorized' expect 0 "events: /data/events" status

# The phone disappears during a command. The missing output must not be mistaken for an answer.
for vanish in "status:getprop" "record off:setprop" "record off:getprop" "events on /data/x:getprop" \
  "conform $work/kit $work/library.so:mkdir" "conform $work/kit $work/library.so:push" \
  "conform $work/kit $work/library.so:chmod"; do
  # shellcheck disable=SC2086
  VANISH=${vanish#*:} expect 2 "still connected?" ${vanish%%:*}
  rm -f "$work/gone"
done
VANISH='so --only' expect 2 "a1 was disconnected while the kit ran" conform "$work/kit" "$work/library.so" --only x
rm "$work/gone"
expect 0 "has never run with a real phone" --help
