#!/bin/bash
# Tests the command ./run with an existing build: run_command_test.sh BUILD_FOLDER
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$root/tests/command.sh"

# request FIELDS: prints a request without images, with these additional fields.
request() {
  echo "{\"request\": {\"id\": 1}, \"frames\": [{}], \"inputs\": [], \"outputs\": []$1}"
}

echo "== Options"
echo '{}' >photo.jpg
refused "--photo: can't read the photo photo.jpg" --photo photo.jpg
request '' >right.json
command_ends 0 --check right.json "$root/samples/night.json"
prints "right.json: ok: 1 frame, in nothing, out nothing, no algorithms" \
  "$root/samples/night.json: ok: 7 frames, in 7 NV21 632x416, out JPEG 632x416, night jpegEncode"
cp right.json ./--algo-delay=20000
command_ends 0 --algo-delay 1 --out photo -- --algo-delay=20000
command_ends 0 --wide --log --photo "$root/samples/photos/portrait.jpg" --out photo
prints "samples/night.json" "made of $root/samples/photos/portrait.jpg"
grep -q ' D _V_VASJNI-RequestProcessor: ' err || fail "--log prints no log"

echo "== Events"
command_ends 0 --events events --out photo "$root/samples/portrait.json"
head -n 1 events | grep -q '"event":"header","format":"orlu-events","version":1,' || fail "$(head -n 1 events)"
[ "$(grep -c '"event":"begin"' events)" = "$(grep -c '"event":"end"' events)" ] || fail "the numbers of begin and end events differ"
while read -r event; do
  grep -qF -- "$event" events || fail "no such event: $event"
done <<'EVENTS'
"source":"composition","tag":"orlu.control.algoType","outcome":"found","held":"String[]","value":["singleBokeh","jpegEncode"]}
"source":"composition","tag":"orlu.control.portrait.state","outcome":"absent"}
"source":"captureResult","tag":"orlu.control.portrait.state","outcome":"found","asked":"Integer","held":"Integer","value":1}
"event":"put","frame":0,"tag":"orlu.feedback.segmentResult","held":"Integer","value":-1}
EVENTS

echo "== Requests with the same name"
# small WIDTH: prints a request with one frame of this width.
small() {
  sed -e "s#photos/#$root/samples/&#" -e "s/\"count\": 1,/& \"width\": $1, \"height\": 48,/" "$root/samples/capture.json"
}
mkdir -p a b
small 64 >a/x.json
small 96 >b/x.json
command_ends 0 --out same --json same.json a/x.json b/x.json ./a/x.json
prints 'named       b-x, ' 'named       x-2, '
grep -o '"name": .*' same.json | tr -d '\n' | grep -qx '"name": "x",.*"b-x",.*"x-2",' || fail "names: $(grep '"name"' same.json)"
for name in x:64 b-x:96 x-2:64; do
  file=same/${name%:*}-base.png
  # Bytes 16 to 19 of a PNG are the width.
  [ "$(od -An -j 16 -N 4 -tu1 "$file" | xargs)" = "0 0 0 ${name#*:}" ] || fail "the width of $file is not ${name#*:}"
done

echo "== Every sample"
samples=("$root"/samples/*.json)
command_ends 0 --params --json report --out shots "${samples[@]}"
# On a slow machine, ./run may print its progress.
log=$(grep -vE '^(making|filling|processing|comparing) ' err)
[ -z "$log" ] || fail "unexpected messages: $log"
[ "$(grep -c '^  file ' out)" -eq ${#samples[@]} ] || fail "not every sample ran"
[ "$(grep -c '^verdict  ok$' out)" -eq $((${#samples[@]} + 1)) ] || fail "not every verdict is ok: $(grep '^verdict' out)"
[ "$(tail -n 1 out)" = "verdict  ok" ] || fail "the last line is not the verdict ok: $(tail -n 1 out)"
if grep -v '^verdict' out | grep -n '.\{81\}'; then fail "a line is longer than 80 columns"; fi
prints "control/jpeg_rotation" '"capture" on client 7'

# of_sample NAME: prints the part of the file out that describes this sample.
of_sample() {
  awk -v RS= -v file="/samples/$1.json" 'index($0, file)' out
}

# put_by NAME: prints the part of this sample's report from "put" to "problems".
put_by() {
  sed -n "/\"$1.json\"/,/\"problems\"/p" report | sed -n '/"put"/,$p'
}

read -r before after <<<"$(of_sample night |
  sed -n 's/.*luma PSNR \([0-9.]*\) dB before, \([0-9.]*\) dB after.*/\1 \2/p')"
awk -v before="${before:-0}" -v after="${after:-0}" 'BEGIN { exit !(before > 10 && after > before + 3) }' ||
  fail "PSNR $before dB before, $after dB after"
of_sample night | grep -q '^  ran  *night, jpegEncode in' ||
  fail "the night shot ran other algorithms: $(of_sample night)"
for part in '"algorithmsAfter"' '"key": "exif_info_for_write"' '"orlu.feedback.jpegEncodedType": '; do
  grep -qF "$part" report || fail "--json has no $part"
done
# The EXIF entries of exposure time, aperture and sensitivity (3200), then the values of the first two
# (0.066 s and f/1.8), and then the JPEG's size, 632x416.
exif='9a82050001000000.{8}9d82050001000000.{8}2788030001000000800c0000.*d001010040420f00b400000064000000'
[[ $(od -An -v -tx1 -N 1000 shots/night-out0.jpg | tr -d ' \n') =~ ${exif}.*ffc000110801a00278 ]] ||
  fail "the night shot has wrong EXIF entries or a wrong size"

of_sample night-async | grep -q '^  callback  *nativeRequestAddr = ' || fail "full-async does not call back"
# Skips the EXIF blocks, because the two shots were taken at different times of day.
cmp --ignore-initial=490 shots/night-out0.jpg shots/night-async-out0.jpg || fail "the full-async shot differs"
differing=$(diff <(put_by night) <(put_by night-async))
{ [ -z "$differing" ] && [ -n "$(put_by night)" ]; } ||
  fail "the values put by night and night-async differ: $differing"

[ "$(of_sample clarity | grep -c ' dropped$')" -eq 4 ] || fail "clarity: $(of_sample clarity)"
of_sample clarity | grep -Eq 'frame 2 .* kept$' || fail "the sharpest frame is not kept: $(of_sample clarity)"
prints "passed on   nothing: the request ran without an algorithm pass" "no-pass-out0: not written"
if of_sample no-pass | grep '^  ran '; then fail "no-pass ran algorithms"; fi

ended
