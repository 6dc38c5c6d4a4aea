#!/bin/bash
# Makes the archive of parsed classes that halves the start time of ./run's VM:
#   archive_classes.sh BUILD_FOLDER
# It contains the classes loaded by a run of two samples with pages and recordings. If that run fails, the
# archive is empty and ./run ignores it: a faulty library must not break the rest of the build.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
archive=$1/java/run.jsa
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# Renamed when complete: the VM would crash on a partial archive.
rm -f "$archive"{,.new}
if ORLU_BUILD=$1 ORLU_TRIALS=off JDK_JAVA_OPTIONS="-XX:ArchiveClassesAtExit=$archive.new" "$root/run" \
  --params --json "$folder/json" --out "$folder" --report "$folder/pages" --record "$folder/recordings" \
  --timeline "$folder/timeline" "$root"/samples/{capture,hdr5}.json >"$folder/log" 2>&1; then
  mv "$archive.new" "$archive"
else
  cat "$folder/log" >&2
  : >"$archive"
fi
