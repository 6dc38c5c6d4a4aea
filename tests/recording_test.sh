#!/bin/bash
# Records samples, and replays, trims, truncates and compares the recordings: recording_test.sh BUILD_FOLDER
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$root/tests/command.sh"

echo "== Every sample is recorded, and its replay is equal"
samples=("$root"/samples/*.json)
ends 0 '^verdict  ok$' --record shots --out images "${samples[@]}"
ends 0 '/000001-request.*: equal, 1[0-9][0-9] parameters, 1 frames, 1 outputs' replay shots
[ "$(grep -c ': equal, ' out)" -eq ${#samples[@]} ] || fail "not every sample was replayed: $(cat out)"
ends 0 ': ok: 1 frame, in NV21 512x512, out JPEG 512x512, jpegEncode$' --check shots/*-request-103/request.json

echo "== Hardware buffers, also of a format that only phones have"
cp -r shots/*-request-214 phone
sed -i '/"buffer"/,/]/s/ 35$/ 17/' phone/request.json
grep -q '^ *17$' phone/request.json || fail "no hardware buffer in phone/request.json"
ends 0 '^phone: equal, 1[0-9][0-9] parameters' replay phone

echo "== Failed runs are recorded up to the failure"
export ORLU_ALGO_LIBRARY=$planted
ORLU_PLANTED=silent ends 1 '^verdict  FAILED: no callback' --record silent --out images "$root/samples/capture.json"
ORLU_PLANTED=silent ends 0 ': equal, 1[0-9][0-9] parameters' replay silent
ends 1 '^  callbacks: \[\] / \[shotCb\]$' replay silent --against "$stand_in"
ORLU_PLANTED=aborts:process ends 1 '^verdict  FAILED: .*SIGABRT' --record dead --out images "$root/samples/capture.json"
info_says 'open  *process has not returned' dead
ORLU_PLANTED=aborts:process ends 0 ': equal, 1[0-9][0-9] parameters' replay dead
ends 0 'did not finish: compared up to that point' replay dead --against "$stand_in"
unset ORLU_ALGO_LIBRARY

echo "== Trimmed"
night=$(echo shots/*-request-101)
ends 0 '^written few ' trim "$night" --out few --frames 0,2
ends 0 '^few: ran, 1[0-9][0-9] parameters; the recording has no results' replay few
ends 0 '^written none ' trim "$night" --out none --no-pixels
ends 0 '^none: equal, 129 parameters' replay none --ignore 'output 0' --ignore orlu.feedback.basicFrameTimestamp
ends 2 'expected frames from 0 to 6, found 7' trim "$night" --out seven --frames 7
ends 2 '--out: the folder already exists: none' trim "$night" --out none
ends 2 'shots: expected one recording, found [0-9]*' trim shots --out one --frames 0
ends 0 '^written again ' trim few --out again --frames 1 --crop 64,64
info_says 'trimmed  *only frames 0, 2 of the recording, then cropped to 64x64, only frame 1 of the copy$' again
grep -q '^  *only frame 1 of the copy$' out || fail "no line for the second trim: $(cat out)"
grep -q '^  end  *whole$' out || fail "no end: $(cat out)"
info_says 'recorded ' shots
! grep -E '.{81}' out || fail "longer than 80 columns"

echo "== Truncated and damaged recordings; tests/recording_faults_test.py has more"
rm -rf cut && cp -r "$night" cut
truncate -s 1000 cut/outcome.json
info_says 'end  *not reached: cut/outcome.json:' cut
ends 0 'cut did not finish: compared up to that point' replay cut
truncate -s 1000 cut/request.json
ends 2 'cut/request.json:[0-9]+:[0-9]+: ' replay cut
rm -rf cut && cp -r "$night" cut
truncate -s 1000 cut/input3.bin
ends 2 'inputs\[3\].file: cut/input3.bin is cut or damaged; expected [0-9]* bytes, found 1000' replay cut
mkdir old && touch old/recording
ends 2 'recordings of version 1 are no longer read' info old

echo "== Untrusted recordings"
printf x >outside
cp -r "$night" strange
for name in ../outside "$PWD/outside" /dev/zero link.bin fifo.bin folder.bin; do
  ln -sf ../outside strange/link.bin
  [ -e strange/fifo.bin ] || mkfifo strange/fifo.bin
  mkdir -p strange/folder.bin
  sed "s#\"file\": \"input3.bin\"#\"file\": \"$name\"#" "$night/request.json" >strange/request.json
  ends 2 '^strange/request.json:[0-9]+:[0-9]+: error: inputs\[3\].file: ' replay strange
  timeout 60 "$root/run" trim strange --out stolen >out 2>&1 && fail "trim accepted $name"
  rm -rf stolen
done
cp "$night/request.json" strange/request.json
rm strange/outcome.json && ln -s ../outside strange/outcome.json
info_says 'end  *not reached: the process ended' strange

echo "== Compared"
ends 1 '^  updated: not reached / 0$' diff "$root/samples/night.json" "$root/samples/night-async.json"
ends 0 ': equal, ' diff "$root/samples/night.json" "$root/samples/night-async.json" --ignore updated
ends 1 'frame 0 was given isFullAsync = \{"int":0\} / \{"int":1\}, composition$' diff "$night" shots/*-request-102
ORLU_PLANTED=untouched ends 1 '  output 0' diff "$root/samples/watermark.json" --lib "$stand_in" --lib "$planted" --out pictures
ends 0 ': equal, ' diff "$night" shots/*-request-102 --ignore updated
ends 0 ': equal, 129 parameters' diff "$night/events.jsonl" "$night/events.jsonl"
ends 2 'expected two runs, or --lib twice' diff "$night"
ends 2 '--tolerance: expected a NUMBER of at least 0, found -1' diff "$night" "$night" --tolerance -1

echo "== Interrupted commands leave no folder"
mkdir stopped
TMPDIR=$PWD/stopped ORLU_ALGO_LIBRARY=$planted ORLU_PLANTED=silent \
  setsid "$root/run" diff "$root/samples/capture.json" "$root/samples/night.json" >out 2>&1 &
until compgen -G 'stopped/*/side1-*/recordings/*/request.json' >/dev/null || ! kill -0 $! 2>/dev/null; do sleep 0.1; done
kill -TERM -- -$! || fail "the comparison ended too early: $(cat out)"
wait $!
[ -z "$(ls stopped)" ] || fail "left behind: $(find stopped)"

echo "== The tag that causes a difference"
# Only three frames, to save time: each trial translates all frames.
sed -e "s#photos/#$root/samples/&#" -e 's/"count": 7/"count": 3/' "$root/samples/night.json" >plain.json
grep -q '"count": 3' plain.json || fail "the number of frames is not set"
sed -e 's/"android.jpeg.orientation": 0/"android.jpeg.orientation": 90/' \
  -e 's/"algorithms"/"properties": {"persist.sys.camera3rd.autotest": "1"}, &/' plain.json >turned.json
ends 0 '^verdict  ok$' --record turns --out images plain.json turned.json
because='^    because of frame 0 android.jpeg.orientation = \{"int":0\} / \{"int":90\}$'
for sides in "plain.json turned.json" "$(echo turns/*)"; do
  # shellcheck disable=SC2086
  ends 1 "$because" diff $sides
  grep -A1 'control/jpeg_rotation: 0 / 90$' out | grep -qE "$because" || fail "diff $sides: $(cat out)"
  grep -A1 'control/auto_test_open: ' out | grep -q 'explains it; it depends on frame 0 orlu.control.wm_waterMark_v3$' || fail "diff $sides: $(cat out)"
  grep -q 'note: given property persist.sys.camera3rd.autotest = ' out || fail "diff $sides: $(cat out)"
done
mkdir short && cp -r turns/000001-request-101 short
ends 1 '^different: 1 requests / 2; nothing to compare with turns/000002-request-101$' diff short turns
grep -q '^short/.* / turns/000001-request-101: equal, 129 parameters' out || fail "not compared: $(cat out)"
# If a parameter differs but no tag does, diff still names the tags that it depends on, with their frames.
sed -e 's/"algorithms"/"properties": {"persist.sys.camera3rd.autotest": "1"}, &/' plain.json >tested.json
ends 1 'control/auto_test_open: ' diff plain.json tested.json
grep -A1 'control/auto_test_open: ' out | grep -q 'it depends on frame 0 orlu.control.wm_waterMark_v3$' || fail "the tag is not named: $(cat out)"
# A tag that differs in all frames is printed on one line. Lines have at most 110 columns.
sed 's/"android.sensor.sensitivity": 3200/"android.sensor.sensitivity": 1600/' plain.json >brighter.json
ends 1 'note: frames 0 to 2 were given android.sensor.sensitivity = ' diff plain.json brighter.json
! grep -E '.{111}' out || fail "longer than 110 columns"
[ "$(grep -c 'given android.sensor.sensitivity' out)" -eq 1 ] || fail "not grouped: $(cat out)"
ends 1 'parameter/exif_info_for_write: sensitivity 3200 / sensitivity 1600$' diff plain.json brighter.json --no-explain
ends 1 'and [0-9]* more differences' diff "$night" shots/*-request-205
! grep -E '.{111}' out || fail "longer than 110 columns"
ends 1 'control/jpeg_rotation: 0 / 90$' diff turns/* --no-explain
! grep -q 'because of' out || fail "explained despite --no-explain: $(cat out)"

ended
