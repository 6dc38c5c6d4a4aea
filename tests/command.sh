# shellcheck shell=bash
# Setup and checks for the tests of ./run. A test, which gets the build folder as its argument, sets root and
# then sources this file, which makes a temporary folder the current one, and deletes it at exit.
export ORLU_BUILD=$1
unset ANDROID_LOG_TAGS ORLU_ALGO_TRACE ORLU_EVENTS ORLU_PIXELS ORLU_PLANTED ORLU_ALGO_LIBRARY
# shellcheck disable=SC2034  # used by the tests that source this file
planted=$ORLU_BUILD/planted/planted_algo.so stand_in=$ORLU_BUILD/lib/liborlu.vac.interface.so
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
failures=0

fail() {
  echo "FAILED: $*"
  failures=$((failures + 1))
}

# command_ends STATUS ARGUMENT...: runs ./run and expects this status; the output is in the files out and err.
command_ends() {
  local wanted=$1 status=0
  shift
  "$root/run" "$@" >out 2>err || status=$?
  [ "$status" -eq "$wanted" ] || fail "./run $*: status $status instead of $wanted: $(cat err)"
}

# ends STATUS PATTERN ARGUMENT...: like command_ends; also expects a line of out or err that matches the
# regular expression PATTERN.
ends() {
  local wanted=$1 pattern=$2 status=0
  shift 2
  "$root/run" "$@" >out 2>err || status=$?
  [ "$status" -eq "$wanted" ] || fail "./run $*: status $status instead of $wanted: $(cat out err)"
  grep -qE -- "$pattern" out err || fail "./run $*: no line matches \"$pattern\": $(cat out err)"
}

# info_says PATTERN FOLDER: runs ./run info for the recording in FOLDER, joins the wrapped lines of its
# output, and expects a line that matches the regular expression PATTERN.
info_says() {
  command_ends 0 info "$2"
  sed -E ':on; $!N; s/\n {20}/ /; t on; P; D' out >lines
  grep -qE -- "$1" lines || fail "./run info $2: no line matches \"$1\": $(cat out)"
}

# prints TEXT...: expects each text in the last command's standard output.
prints() {
  local text
  for text in "$@"; do
    grep -qF -- "$text" out || fail "\"$text\" is not printed: $(cat out)"
  done
}

# refused LINE ARGUMENT...: expects that ./run ends with status 2 and prints only the error message LINE.
refused() {
  local line=$1
  shift
  command_ends 2 "$@"
  [ "$(cat err)" = "run: error: $line" ] || fail "\"run: error: $line\" was expected instead of: $(cat err)"
  [ ! -s out ] || fail "./run $* printed: $(cat out)"
}

# ended: exits with status 1 if a check failed, else with 0.
ended() {
  [ "$failures" -eq 0 ] && echo "All passed"
  exit $((failures > 0))
}
