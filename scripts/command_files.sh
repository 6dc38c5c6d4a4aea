#!/bin/bash
# Writes what is known of ./run's command line where the launcher and bash can read it:
#   command_files.sh BUILD_FOLDER [FOLDER]
# FOLDER is service/command when none is named; a test has it made elsewhere and compares.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$root/scripts/lib.sh"
folder=${2:-$root/service/command}
new=$(mktemp -d)
trap 'rm -rf "$new"' EXIT
"$(debian_java_home "")/bin/java" -cp "$1/java/orlu-service.jar:$1/java/orlu-host-framework.jar:$java_libraries" \
  com.orlu.orlu3rdalgoservice.tool.CommandFiles "$new"
# A program of its own, with options of its own.
"$1/bin/conform" --help >"$new/help/conform.txt"
# A run beside this may read the table: it is never gone.
mkdir -p "$folder/help"
cp "$new/options.txt" "$folder"
cp "$new"/help/*.txt "$folder/help"
for text in "$folder"/help/*.txt; do
  [ -e "$new/help/${text##*/}" ] || rm "$text"
done
