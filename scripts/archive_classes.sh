#!/bin/bash
# Makes the VM's class archive, which halves the start time of ./run's VM:
#   archive_classes.sh BUILD_FOLDER
# Runs ./run on two samples, with pages and recordings, and archives the parsed classes that it loaded. If
# this run fails, makes an empty archive, which ./run ignores: a faulty library must not break the rest of the
# build.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
archive=$1/java/run.jsa
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# Renames the archive when it is complete: the VM would crash on a partial archive.
rm -f "$archive"{,.new}
if ORLU_BUILD=$1 ORLU_TRIALS=off JDK_JAVA_OPTIONS="-XX:ArchiveClassesAtExit=$archive.new" "$root/run" \
  --params --json "$folder/json" --out "$folder" --report "$folder/pages" --record "$folder/recordings" \
  --timeline "$folder/timeline" "$root"/samples/{capture,hdr5}.json >"$folder/log" 2>&1; then
  mv "$archive.new" "$archive"
else
  cat "$folder/log" >&2
  : >"$archive"
fi
