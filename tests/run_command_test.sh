#!/bin/bash
# Tests the command ./run with what is built already: run_command_test.sh BUILD_FOLDER
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$root/scripts/lib.sh"
export ORLU_BUILD=$1
unset ANDROID_LOG_TAGS ORLU_ALGO_TRACE
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
failures=0

fail() {
  echo "FAILED: $*"
  failures=$((failures + 1))
}

# command_ends STATUS ARGUMENT...: runs ./run; what it prints goes into the files out and err.
command_ends() {
  local wanted=$1 status=0
  shift
  "$root/run" "$@" >out 2>err || status=$?
  [ "$status" -eq "$wanted" ] || fail "./run $*: status $status instead of $wanted: $(cat err)"
}

# prints TEXT...: what the last command printed holds each.
prints() {
  local text
  for text in "$@"; do
    grep -qF -- "$text" out || fail "\"$text\" is not printed: $(cat out)"
  done
}

# refused LINE ARGUMENT...: the command does nothing but say this one line.
refused() {
  local line=$1
  shift
  command_ends 2 "$@"
  [ "$(cat err)" = "run: $line" ] || fail "\"run: $line\" was expected instead of: $(cat err)"
  [ ! -s out ] || fail "$* printed: $(cat out)"
}

# refused_request LINE REQUEST: a request file of this text is refused.
refused_request() {
  printf '%s' "$2" >bad.json
  refused "bad.json: $1" bad.json
}

# request FIELDS: the text of a request without images, with these fields more.
request() {
  echo "{\"request\": {\"id\": 1}, \"frames\": [{}], \"inputs\": [], \"outputs\": []$1}"
}

# facts FILE: what a JPEG file shows and says.
facts() {
  "$(debian_java_home)/bin/java" -Djava.awt.headless=true "$root/tests/support/PhotoFacts.java" "$1"
}

echo "== Request files that can't be taken"
known="about, algorithms, client, frames, fullAsync, inputs, outputs, photo, properties, request"
refused_request "colour: unknown field; known here: $known" "$(request ', "colour": 1')"
refused_request 'fullAsync: needs true or false, found "yes"' "$(request ', "fullAsync": "yes"')"
refused_request 'request.id: needs a number, found "1"' '{"request": {"id": "1"}, "frames": [], "inputs": [], "outputs": []}'
refused_request 'needs the field outputs' '{"request": {"id": 1}, "frames": [], "inputs": []}'
refused_request 'frames[0].captureResult."no.such.tag": no such tag' \
  '{"request": {"id": 1}, "frames": [{"captureResult": {"no.such.tag": 1}}], "inputs": [], "outputs": []}'
refused_request 'frames[0].captureResult."android.control.aeMode": needs a number, found "on"' \
  '{"request": {"id": 1}, "frames": [{"captureResult": {"android.control.aeMode": "on"}}], "inputs": [], "outputs": []}'
refused_request 'outputs[0].format: needs one of NV21, NV12, YU12, YV12, MIPI_RAW10, RAW16, RAW_SENSOR, R8G8B8A8, JPEG, found "NV12x"' \
  '{"request": {"id": 1}, "frames": [], "inputs": [], "outputs": [{"format": "NV12x"}]}'
refused_request 'photo: no such photo: none.jpg' "$(request ', "photo": "none.jpg"')"
# shellcheck disable=SC1003 # the sequence is JSON's
refused_request 'photo: no such photo: a?b' "$(request ', "photo": "a\u0000b"')"
refused_request 'properties.level: needs a name, and a value of at most 91 bytes' \
  "$(request ", \"properties\": {\"level\": \"$(printf '%092d' 0)\"}")"
refused_request 'fullAsync: needs a frame, whose composition tells it' \
  '{"request": {"id": 1}, "fullAsync": true, "frames": [], "inputs": [], "outputs": []}'
refused_request 'not JSON: it ends too early' '{"request": {"id": 1}'
refused_request 'not JSON, line 1 column 11' '{"about": no}'
refused_request 'the field "id" is given twice' '{"request": {"id": 1, "id": 2}}'
echo '{}' >photo.jpg
refused_request 'photo: no photo that can be read: photo.jpg' \
  '{"request": {"id": 1}, "photo": "photo.jpg", "frames": [{}], "inputs": {"format": "NV21"}, "outputs": []}'
refused 'none.json: no such file' none.json
refused "$folder: can't be read" "$folder"

echo "== Options"
refused '--photo: no such photo: none.jpg' --photo none.jpg
refused '--photo: no photo that can be read: photo.jpg' --photo photo.jpg
refused 'unknown option --colour; --help lists all' --colour
refused '--out needs a value' --out
command_ends 0 --help
prints "usage: ./run" "--params" "--log" "--out DIR" "--photo FILE" "--one-client" "--check" "--json FILE"
request '' >right.json
command_ends 0 --check right.json "$root/samples/night.json"
[ "$(cat out)" = $'right.json: right\n'"$root/samples/night.json: right" ] || fail "--check: $(cat out)"
request ', "colour": 1' >bad.json
refused "bad.json: colour: unknown field; known here: $known" right.json bad.json

echo "== The night shot"
command_ends 0 --params --json night.report --out shots
[ ! -s err ] || fail "the log is not silent: $(cat err)"
prints "ran         night, jpegEncode in" "orlu.algo.control    jpeg_rotation" '"capture" on client 7'
read -r before after <<<"$(sed -n 's/.*PSNR of luma .*: \([0-9.]*\) dB before, \([0-9.]*\) dB after.*/\1 \2/p' out)"
awk -v before="${before:-0}" -v after="${after:-0}" 'BEGIN { exit !(before > 10 && after > before + 3) }' ||
  fail "PSNR $before dB before, $after dB after"
night=$(facts shots/night-out0.jpg)
[ "${night%%$'\n'*}" = "632x416 {exposure=0.066, f=1.8, focal=5.6, iso=3200.0}" ] || fail "the night shot is $night"
for part in '"algorithmsAfter"' '"key": "exif_info_for_write"' '"orlu.feedback.jpegEncodedType": '; do
  grep -qF "$part" night.report || fail "--json has no $part"
done

echo "== Full-async, with the same result"
command_ends 0 --json async.report --out shots "$root/samples/night-async.json"
prints "callback    nativeRequestAddr = "
[ "$(facts shots/night-async-out0.jpg)" = "$night" ] || fail "the full-async shot is another"
differing=$(diff <(sed -n '/"put"/,/"problems"/p' night.report) <(sed -n '/"put"/,/"problems"/p' async.report))
[ -z "$differing" ] || fail "full-async and not differ: $differing"

echo "== Other samples"
command_ends 0 --out shots "$root/samples/clarity.json"
[ "$(grep -c ' dropped$' out)" -eq 4 ] || fail "clarity: $(cat out)"
grep -Eq 'frame 2 .* kept$' out || fail "not the sharpest frame is kept: $(cat out)"
command_ends 0 --out shots "$root/samples/no-pass.json"
prints "handed on   nothing: the request went without an algorithm pass" "no-pass-out0: not written"
if grep -q '^  ran ' out; then fail "no-pass ran: $(cat out)"; fi
command_ends 0 --photo "$root/samples/photos/portrait.jpg" --out shots "$root/samples/night.json"
prints "made of $root/samples/photos/portrait.jpg"
command_ends 0 --log --out shots
grep -q ' D _V_VASJNI-RequestProcessor: ' err || fail "--log shows no log"

command_ends 0 --out shots "$root"/samples/*.json
samples=("$root"/samples/*.json)
[ "$(grep -c '^  file ' out)" -eq ${#samples[@]} ] || fail "not every sample ran"
if grep '^  problem ' out; then fail "a sample had a problem"; fi

[ "$failures" -eq 0 ] && echo "All passed"
exit $((failures > 0))
