#!/bin/bash
# Makes the archive of parsed classes with which ./run's VM starts in half the time:
#   archive_classes.sh BUILD_FOLDER
# The classes are those that a run of two samples loads. Without that run there is an empty archive, which ./run leaves
# out: a library that fails today must not keep the rest from being built.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
archive=$1/java/run.jsa
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# It appears under its name when it is whole: the VM would die of half of one.
rm -f "$archive"{,.new}
if ORLU_BUILD=$1 JDK_JAVA_OPTIONS="-XX:ArchiveClassesAtExit=$archive.new" "$root/run" \
  --params --json "$folder/json" --out "$folder" "$root"/samples/{capture,hdr5}.json >"$folder/log" 2>&1; then
  mv "$archive.new" "$archive"
else
  cat "$folder/log" >&2
  : >"$archive"
fi
