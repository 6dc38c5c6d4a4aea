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
  com.orlu.orlu3rdalgoservice.tool.cli.CommandFiles "$new"
# A program of its own, with options of its own, which its help lists with the labels of their values.
"$1/bin/conform" --help >"$new/help/conform.txt"
sed -nE 's/^usage: .* \[([A-Z]+)\]$/- \1/p; s/^  (--[a-z]+) ([A-Z]+).*/\1 \2/p; s/^  (--[a-z]+)  .*/\1 -/p' \
  "$new/help/conform.txt" | grep -v '^--help' |
  while read -r argument value; do
    printf '%-11s %-13s %-14s -\n' conform "$argument" "$value"
  done >>"$new/options.txt"
# A run beside this may read the table: it is never gone.
mkdir -p "$folder/help"
cp "$new/options.txt" "$folder"
cp "$new"/help/*.txt "$folder/help"
for text in "$folder"/help/*.txt; do
  [ -e "$new/help/${text##*/}" ] || rm "$text"
done
