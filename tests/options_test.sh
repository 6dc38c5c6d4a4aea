#!/bin/bash
# Tests the command line of ./run, its help and its completion: options_test.sh BUILD_FOLDER
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$root/tests/command.sh"

echo "== What is refused"
mkdir -p a b
touch mine.json b/mine.json old
cp "$root/samples/night.json" request.json
while IFS='|' read -r arguments line; do
  read -ra words <<<"$arguments"
  refused "$line" "${words[@]}"
done <<'REFUSED'
--colour|unknown option --colour; see ./run --help
--jason|unknown option --jason (did you mean --json?); see ./run --help
--pram|unknown option --pram (did you mean --params?); see ./run --help
--out|--out needs a value; see ./run --help
--photo none.jpg|--photo: no such photo: none.jpg
infoo|infoo: no such file or subcommand (did you mean info?); see ./run --help
--out a replay|the subcommand comes first: ./run replay ...; see ./run --help
colour|colour: no such file or subcommand; see ./run --help
run --photo none.jpg|--photo: no such photo: none.jpg
--out a --json request.json|--json would write over a request file: request.json
--out a --events old --timeline ./old|--events and --timeline name the same file: ./old
--out a --timeline a|--timeline: needs a file, found a folder: a
--out a --json none/report|--json: no such folder: none
--out old|--out: needs a folder, found a file: old
--out a --record old|--record: needs a folder, found a file: old
info|needs FOLDER; see ./run info --help
info none|no such file: none
info --ouput a|unknown option --ouput; see ./run info --help
trim a|needs --out DIR; see ./run trim --help
trim a b --out c|one argument too many: b; see ./run trim --help
trim a --out c --frames 1,x|--frames needs NUMBER, found "x"; see ./run trim --help
diff a|diff needs two runs, or --lib twice; see ./run diff --help
diff . . --out old|--out: needs a folder, found a file: old
diff a b --tolerance few|--tolerance needs NUMBER, found "few"; see ./run diff --help
import|needs --out FILE; see ./run import --help
trials|needs REQUEST; see ./run trials --help
conform --onyl x|unknown option --onyl (did you mean --only?); see ./run conform --help
conform --junit|--junit needs a value; see ./run conform --help
conform --only loadin|there is no check "loadin" (--list names all); see ./run conform --help
conform --seed few|--seed takes a number that is not negative, not "few"; see ./run conform --help
conform a.so b.so|one library at a time, not "b.so" as well; see ./run conform --help
REFUSED
command_ends 2 mime.json b/minr.json none/mine.json
for line in 'mime.json: no such file (did you mean mine.json?)' 'b/minr.json: no such file (did you mean b/mine.json?)' \
  'none/mine.json: no such file'; do
  grep -qxF "$line" err || fail "\"$line\" is not said: $(cat err)"
done

echo "== What is refused before a build"
# A checkout without anything to build: what goes on finds no build.
mkdir bare
mkdir bare/service
cp -r "$root/run" "$root/scripts" bare
cp -r "$root/service/command" bare/service
while IFS='|' read -r arguments line; do
  read -ra words <<<"$arguments"
  status=0
  ORLU_BUILD='' bare/run "${words[@]}" >out 2>err || status=$?
  [ "$status $(cat err)" = "2 run: $line" ] || fail "./run $arguments without a build: $status $(cat err)"
done <<'UNBUILT'
--jason|unknown option --jason (did you mean --json?); see ./run --help
--out --json a --paramss=1|unknown option --paramss=1 (did you mean --params?); see ./run --help
tags --jsn|unknown option --jsn (did you mean --json?); see ./run tags --help
reply|reply: no such file or subcommand (did you mean replay?); see ./run --help
--log info a|the subcommand comes first: ./run info ...; see ./run --help
UNBUILT
rm -r bare

echo "== Help and version, without a build"
export ORLU_BUILD=none
while read -r subcommand kind _; do
  [ "$kind" = . ] || continue
  for help in --help -h; do
    command_ends 0 "$subcommand" $help
    [ ! -s err ] || fail "$subcommand $help: $(cat err)"
  done
  if [ -e "$root/service/command/help/$subcommand.txt" ]; then
    head -n 1 out | grep -q '^usage: ./run' || fail "$subcommand --help begins with $(head -n 1 out)"
    if grep -n '.\{81\}' out; then fail "the help of $subcommand is wider than 80 columns"; fi
  fi
done < <(grep -v '^#' "$root/service/command/options.txt" | grep listed)
command_ends 0 samples/night.json --help
prints "usage: ./run [options]" "--params" "--out=DIR" "  replay  "
for arguments in --version "--check --version"; do
  # shellcheck disable=SC2086 # two words
  command_ends 0 $arguments
  grep -qF "project(orlu_vas VERSION $(cat out) " "$root/CMakeLists.txt" || fail "$arguments: $(cat out)"
done
export ORLU_BUILD=$1

echo "== What the launcher knows is what the options say"
"$root/scripts/command_files.sh" "$ORLU_BUILD" "$folder/command"
diff -r "$root/service/command" command >&2 || fail "service/command is old: cmake --build build/dev --target command-files"
# launched WORDS ARGUMENT...: what the launcher finds in this command line.
launched() {
  local wanted=$1
  shift
  read_command_line "$@"
  # shellcheck disable=SC2154 # it sets launches
  [ "$(xargs <<<"$launches")" = "$wanted" ] || fail "./run $*: the launcher finds $launches instead of $wanted"
}
source "$root/scripts/command_line.sh"
launched "-"
launched "- -" samples/arm
launched "- arm - trials log" --arm x.json --explain=key --log
launched "- - arm" --out --arm
launched "-" -- --arm
launched "- - - -" replay --arm --log
launched "conform - -" conform --arm
launched "only-trials - - - -" trials a --record b

echo "== Completion"
command_ends 0 completion
bash -n out || fail "the completion can't be read"
# completed LINE WORD...: bash offers these words, perhaps among others, after a line; "!" before one that it
# must not.
completed() {
  local line=$1 word offered
  shift
  read -ra COMP_WORDS <<<"${line//=/ = }"
  [[ $line != *[\ =] ]] || COMP_WORDS+=('')
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  COMPREPLY=()
  _orlu_run "${COMP_WORDS[0]}"
  offered=" ${COMPREPLY[*]} "
  for word in "$@"; do
    case $word in
      !*) [[ $offered != *" ${word#!} "* ]] || fail "after \"$line\" completion offers ${word#!}" ;;
      *) [[ $offered == *" $word "* ]] || fail "after \"$line\" completion offers no $word but$offered" ;;
    esac
  done
}
# shellcheck disable=SC1091 # it was written above
source out
touch photo.jpg lib.so
cd "$root" || exit 1
while IFS='|' read -r line offered; do
  read -ra words <<<"${offered//\~/$folder}"
  completed "${line//\~/$folder}" "${words[@]}"
done <<'CASES'
./run re|replay !run !play !trials
./run --ex|--explain !--params
./run -|--out --check --help !--frames
./run --out=sam|samples !samples/night.json
./run --out sam|samples
./run --explain exif_info|exif_info_for_write !control/exif_info
./run --explain=control/jpeg|control/jpeg_rotation
./run --explain al|all algorithms
./run tags orlu.control.currentM|orlu.control.currentModeEx !orlu.control.algoType
./run parameters hdr_pro|hdr_process_type
./run parameters al|!all
./run algorithms ni|night !jpegEncode
./run formats RAW|RAW16 RAW_SENSOR !NV21
./run samples hdr|hdr5 hdr7 !night
./run samples/nig|samples/night.json samples/night-async.json
./run nig|samples/night.json samples/night-async.json
./run ~/|~/mine.json ~/a !~/photo.jpg
./run --photo ~/p|~/photo.jpg
./run replay --against ~/|~/lib.so ~/a !~/mine.json
./run info sam|samples !samples/night.json
./run trim -|--frames --no-pixels --out !--params
./run import ~/|~/photo.jpg ~/mine.json
./run conform --p|--patience
./run conform --only set|setValue
./run diff samples/night.json samples/nig|samples/night-async.json
CASES
cd "$folder" || exit 1
completed "$root/run replay --ag" --against
completed "./run m" mine.json
ended
