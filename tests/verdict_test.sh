#!/bin/bash
# verdict_test.sh BUILD_FOLDER: runs ./run with faulty algorithm libraries, and checks its last line and exit
# status. Four rows run in parallel, because some of them wait ten seconds for a callback.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export ORLU_BUILD=$1
unset ANDROID_LOG_TAGS ORLU_ALGO_TRACE ORLU_EVENTS ORLU_PLANTED
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
echo "no library" >"$folder/text.so"

# sample ("!" adds --validate) | invalid library file, or fault of tests/planted | exit status | regular
# expression for the text after "FAILED: " in the verdict, unused with status 0
rows() {
  cat <<'ROWS'
capture|text.so|3|the algorithm library can't be opened: .*/text\.so: file too short
capture|none.so|3|the algorithm library can't be opened: .*none\.so: .*No such file or directory
capture|without_entry|3|the algorithm library .*planted_without_entry\.so has no AlgoInterfaceEntry: .*
capture|lacks:process|3|the algorithm library .*planted_algo\.so lacks process
capture|lacks:getSize|3|the algorithm library .*planted_algo\.so lacks getSize
capture|lacks:setValue|1|the algorithm library .*planted_algo\.so lacks setValue
capture|lacks:flush|0|
capture|lacks:init|0|
capture|answers:createClient|3|createClient returned no client
capture|answers:init|1|init returned -22
capture|answers:setValue|1|setValue returned -22 \([0-9]+ times\)
capture|answers:getValue|1|output 0 is a JPEG of size 0
capture|answers:process|1|no callback for request 103 within 10 s; process was called and returned -22 after [0-9.]+ ms
capture|throws:createClient|3|createClient threw std::runtime_error: planted
capture|throws:init|1|init threw std::runtime_error: planted
capture|throws:process|1|no callback .*; process was called and threw std::runtime_error: planted after [0-9.]+ ms
capture|silent|1|no callback for request 103 within 10 s; process was called and returned 0 after [0-9.]+ ms
capture|name|1|no callback for request 103 within 10 s; process .*; 1 callback ignored: unknown name "shotcb"
capture|id|1|no callback .*; 1 callback ignored: it names the native request 0x1 instead of 0x0
capture|late|1|no callback .*; 1 callback ignored: it arrived after 11\.[0-9] s
capture|unattached|0|
night-async|unattached|1|no callback .*; 1 callback ignored: its thread [0-9]+ ".*" is not attached to the VM
lightstream-stop|unattached|1|1 callback ignored: its thread [0-9]+ ".*" is not attached to the VM
capture|idle|1|passed on but not run: jpegEncode; output 0 is untouched \(all its bytes are 0\) and of size 0
watermark|untouched|1|output 0 is untouched \(all its bytes are 0\)
capture|empty|1|output 0 is a JPEG of size 0
capture|aborts:process|1|.*planted_algo\.so ended the process by signal 6 \(SIGABRT\) in process of request 103; the crash file is shots/crash\.log
capture|segfaults:setValue|1|.*planted_algo\.so ended the process by signal 11 \(SIGSEGV at planted_algo\.so\+0x[0-9a-f]+\) in setValue of .*; the crash file is shots/crash\.log
capture|aborts:createClient|3|.*planted_algo\.so ended the process by signal 6 \(SIGABRT\) in createClient; .*
capture|hangs:process|1|stopped by signal 15 \(SIGTERM\), with process of request 103 still running; .*
capture!|twice|1|breach of the contract by the algorithm library: callback \(event [0-9]+\) is for the request 0x0, which was called back already, expected one callback for each request
night-async!|twice|1|breach .*: callback \(event [0-9]+\) is for the request 0x0, which was called back already, .*
capture!|headless|1|1 callback ignored: .*; breach .*: callback .* has 19 bytes, too few for its name, .*
capture!|afterwards|1|breach .*: callback .* arrives after destroyClient has returned, expected no callback .*( \([0-9]+ times\))?
night-async!|id|1|no callback .*; breach .*: callback .* is for the request 0x1, which was not submitted, .*
capture!|answers:createMetadata|1|.*; breach .*: createMetadata .* returned null, expected a block \([0-9]+ times\)
capture!|visits|1|breach .*: visit .* has 4 bytes for orlu\.algo\.control/frame_number, expected 8 bytes
capture!|brief|1|.*breach .* by the algorithm library: getValue .* got a value of 3 bytes for .*/encoded_jpeg_size, expected 4 bytes
capture!|throws:createClient|3|createClient threw std::runtime_error: planted
capture!|answers:createClient|3|createClient returned no client; breach .*: createClient .* returned null, expected a client
capture!|aborts:flush|1|.* in flush; the crash file is shots/crash\.log
capture!|unattached|0|
night-async!||0|
ROWS
}

# lose_patience GROUP: waits up to a minute until the run calls the operation "process", then terminates the
# run's process group.
lose_patience() {
  local i
  for ((i = 0; i < 600; ++i)); do
    if grep -qs '"op":"process"' events; then break; fi
    sleep 0.1
  done
  kill -TERM -- "-$1"
}

# check SAMPLE FAULT STATUS PATTERN: runs one row in its own folder. Prints failures.
check() {
  local sample=$1 fault=$2 wanted=$3 pattern=$4 status=0 library=$ORLU_BUILD/planted/planted_algo.so line left
  local options=(--out shots --json report)
  [[ $sample != *! ]] || options+=(--validate)
  case $fault in
    *.so) library=$folder/$fault ;;
    without_entry) library=$ORLU_BUILD/planted/planted_without_entry.so ;;
  esac
  mkdir "$folder/$sample-$fault" && cd "$folder/$sample-$fault" || return
  ORLU_ALGO_LIBRARY=$library ORLU_PLANTED=$fault ORLU_EVENTS=$PWD/events setsid "$root/run" "${options[@]}" \
    "$root/samples/${sample%!}.json" >out 2>err &
  [[ $fault != hangs:* ]] || lose_patience "$!"
  wait "$!" || status=$?
  line=$(tail -n 1 out)
  pattern="^verdict  ${pattern:+FAILED: $pattern}"
  [ "$wanted" != 0 ] || pattern="^verdict  ok"
  [[ $status =~ ^$wanted$ && $line =~ $pattern$ ]] ||
    echo "FAILED: $sample, $fault: status $status instead of $wanted, \"$line\" instead of \"$pattern\": $(cat err)"
  grep -q "\"status\": $status" report || echo "FAILED: $sample, $fault: the report's status differs"
  left=$(find . -mindepth 1 -maxdepth 1 ! -name out ! -name err ! -name report ! -name shots ! -name events)
  [ -z "$left" ] || echo "FAILED: $sample, $fault: leaves $left in the caller's folder"
}

rows | {
  while IFS='|' read -r sample fault status pattern; do
    check "$sample" "$fault" "$status" "$pattern" &
    while [ "$(jobs -rp | wc -l)" -ge 4 ]; do wait -n; done
  done
  wait
} | tee "$folder/failures"
[ ! -s "$folder/failures" ] && echo "All passed: $(rows | wc -l) faults"
