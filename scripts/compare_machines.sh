#!/bin/bash
# Runs requests on this machine and on the ARM one, and compares parameters, algorithm lists, values put back,
# output descriptors, images and events.
#   scripts/compare_machines.sh [request.json ...]      all samples when none is named
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$root/scripts/lib.sh"

install_missing "to compare results" python3
if [ $# -eq 0 ]; then
  set -- "$root"/samples/*.json
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# results_of MACHINE OPTION...: what ./run leaves behind there.
results_of() {
  local folder=$work/$1
  mkdir "$folder"
  if ! "$root/run" "${@:2}" --wide --json "$folder/results.json" --events "$folder/events" --out "$folder/images" \
    "${requests[@]}" >"$folder/summary.txt"; then
    cat "$folder/summary.txt" >&2
    die "a request failed on $1"
  fi
}

requests=("$@")
results_of host
results_of arm --arm
python3 "$root/scripts/compare_results.py" "$work/host" "$work/arm"
