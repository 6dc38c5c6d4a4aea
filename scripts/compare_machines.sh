#!/bin/bash
# Runs requests on this machine and on ARM, and compares parameters, algorithm lists, returned values, output
# descriptors, images, printed text and events. Then replays this machine's recordings on ARM.
#   scripts/compare_machines.sh [request.json ...]      without arguments: all samples
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$root/scripts/lib.sh"

install_missing "to compare results" python3
if [ $# -eq 0 ]; then
  set -- "$root"/samples/*.json
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# results_of MACHINE OPTION...: runs the requests with these options, and stores the results in $work/MACHINE.
results_of() {
  local folder=$work/$1
  mkdir "$folder"
  if ! "$root/run" "${@:2}" --wide --record "$folder/recordings" --events "$folder/events" --out "$folder/images" \
    "${requests[@]}" >"$folder/summary.txt"; then
    cat "$folder/summary.txt" >&2
    die "a request failed on $1"
  fi
}

# summary MACHINE: prints the runs' output with folders, times and descriptors masked.
summary() {
  sed -E "s#$work/$1##g; s/\b[0-9]+\.[0-9] ms\b/* ms/g; s/\bsharedFd = [0-9]+/sharedFd = */g" "$work/$1/summary.txt"
}

requests=("$@")
results_of host
results_of arm --arm
status=0
"$root/run" diff "$work/host/recordings" "$work/arm/recordings" --out "$root/out/machines" || status=1
diff <(summary host) <(summary arm) || status=1
python3 "$root/scripts/compare_events.py" "$work/host/events" "$work/arm/events" || status=1
"$root/run" replay --arm "$work/host/recordings" || status=1
exit "$status"
