#!/bin/bash
# Tests recordings of the pixels that the algorithm library read and wrote:
#   recorded_pixels_test.sh BUILD_FOLDER
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$root/tests/command.sh"

echo "== Inputs and outputs of every sample are recorded, and equal those in Java"
# Excludes no-pass.json: its request has no algorithm pass.
mapfile -t samples < <(find "$root/samples" -name '*.json' ! -name no-pass.json | sort)
ends 0 '^verdict  ok$' --record shots --out images "${samples[@]}"
info_says '^  process in 0 to 6 [0-9]+ bytes, as in Java$' shots
# count PATTERN: number of images on the lines that match, for example "input 0 to 6".
count() {
  grep -E "^  $1" out | sed -E 's/^  (process |callback )?[a-z]+ //' |
    awk '{ n += $2 == "to" ? $3 - $1 + 1 : 1 } END { print n + 0 }'
}
for pair in "input [0-9]|process in .*, as in Java$" "result [0-9]|callback out .*, as in Java$"; do
  images=$(count "${pair%|*}")
  [ "$images" -gt 20 ] || fail "only $images images: $pair"
  [ "$images" -eq "$(count "${pair#*|}")" ] || fail "$images images instead of $(count "${pair#*|}"): $pair"
done
# Bytes already in the recording are not stored twice.
[ -z "$(find shots -name 'process-*' -o -name 'callback-*')" ] || fail "stored twice: $(ls shots/*)"

echo "== A library that writes after its callback"
ORLU_ALGO_LIBRARY=$planted ORLU_PLANTED=scribbles ends 0 'ok$' --record late --out images \
  "$root"/samples/capture.json "$root"/samples/night-async.json
for shot in late/*; do
  info_says '^  callback out 0  *[0-9]+ bytes, differs from Java at byte 1000: written after the callback$' "$shot"
  ends 1 '^  callback output 0: .*differs from Java at byte 1000: written after the callback / ' replay "$shot"
done
ends 0 '^written all ' trim "$shot" --out all
info_says '^  callback out 0 .*, differs from Java at byte 1000' all
ends 0 '^written none ' trim "$shot" --out none --no-pixels
info_says '^  callback out 0  *[0-9]+ bytes, Java.s image is not recorded$' none

echo "== An input that differs from Java's"
python3 - shots/*-request-103 <<'PYTHON'
import json, pathlib, sys, zlib
folder = pathlib.Path(sys.argv[1])
pixels = bytearray((folder / "input0.bin").read_bytes())
pixels[77] ^= 1
lines = (folder / "events.jsonl").read_text().splitlines()
for i, line in enumerate(lines):
    event = json.loads(line)
    if event["event"] == "pixels" and event["image"] == "input":
        (folder / event["file"]).write_bytes(pixels)
        event["crc"] = f"{zlib.crc32(pixels):08x}"
        lines[i] = json.dumps(event)
(folder / "events.jsonl").write_text("\n".join(lines) + "\n")
PYTHON
shot=$(echo shots/*-request-103)
ends 1 '^  process input 0: [0-9]+ bytes, differs from Java at byte 77 / [0-9]+ bytes, as in Java$' replay "$shot"
ends 0 ': equal, ' replay "$shot" --ignore 'input 0'
truncate -s 1000 "$shot"/process-input0*
info_says 'process-input0[^ ]* is cut or damaged; expected [0-9]* bytes, found 1000' "$shot"

echo "== Recordings with a size limit, in a given folder, and of a process that died"
ORLU_PIXELS_BYTES=1000 ends 0 '^verdict  ok$' --record few --out images "$root/samples/capture.json"
info_says '^  process in 0  *kept: no: more bytes than ORLU_PIXELS_BYTES allows$' few
ORLU_PIXELS=$folder/mine ends 0 '^verdict  ok$' --out images "$root/samples/capture.json"
[ "$(find mine -name 'process-input0-*' -o -name 'callback-output0-*' | wc -l)" -eq 2 ] || fail "expected two files: $(find mine)"
ORLU_PIXELS=/proc/none ends 0 'ORLU_PIXELS: /proc/none: No such file' --out images "$root/samples/capture.json"
ORLU_ALGO_LIBRARY=$planted ORLU_PLANTED=aborts:process ends 1 'SIGABRT' --record dead --out images "$root/samples/capture.json"
info_says '^  process in 0  *[0-9]+ bytes, as in Java$' dead

ended
