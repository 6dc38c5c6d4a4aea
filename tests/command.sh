# shellcheck shell=bash
# What the tests of the command ./run share. Sourced by them with the build folder as their first argument;
# they set root. The work is done in a folder that goes with the test.
export ORLU_BUILD=$1
unset ANDROID_LOG_TAGS ORLU_ALGO_TRACE ORLU_EVENTS ORLU_PIXELS ORLU_PLANTED ORLU_ALGO_LIBRARY
# shellcheck disable=SC2034  # for those who source this
planted=$ORLU_BUILD/planted/planted_algo.so stand_in=$ORLU_BUILD/lib/liborlu.vac.interface.so
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
failures=0

fail() {
  echo "FAILED: $*"
  failures=$((failures + 1))
}

# command_ends STATUS ARGUMENT...: runs ./run; what it prints goes into the files out and err.
command_ends() {
  local wanted=$1 status=0
  shift
  "$root/run" "$@" >out 2>err || status=$?
  [ "$status" -eq "$wanted" ] || fail "./run $*: status $status instead of $wanted: $(cat err)"
}

# ends STATUS PATTERN ARGUMENT...: ./run ends so, and prints a line that this regular expression finds.
ends() {
  local wanted=$1 pattern=$2 status=0
  shift 2
  "$root/run" "$@" >out 2>err || status=$?
  [ "$status" -eq "$wanted" ] || fail "./run $*: status $status instead of $wanted: $(cat out err)"
  grep -qE -- "$pattern" out err || fail "./run $*: no line is \"$pattern\": $(cat out err)"
}

# info_says PATTERN FOLDER: ./run info has a line on this recording that the regular expression finds, in however
# many lines a terminal gets it.
info_says() {
  command_ends 0 info "$2"
  sed -E ':on; $!N; s/\n {20}/ /; t on; P; D' out >lines
  grep -qE -- "$1" lines || fail "./run info $2: no line is \"$1\": $(cat out)"
}

# prints TEXT...: what the last command printed holds each.
prints() {
  local text
  for text in "$@"; do
    grep -qF -- "$text" out || fail "\"$text\" is not printed: $(cat out)"
  done
}

# refused LINE ARGUMENT...: the command does nothing but say this one line.
refused() {
  local line=$1
  shift
  command_ends 2 "$@"
  [ "$(cat err)" = "run: error: $line" ] || fail "\"run: error: $line\" was expected instead of: $(cat err)"
  [ ! -s out ] || fail "$* printed: $(cat out)"
}

# ended: the test's own end.
ended() {
  [ "$failures" -eq 0 ] && echo "All passed"
  exit $((failures > 0))
}
