#!/bin/bash
# Tests the command line of ./run, its help and its completion: options_test.sh BUILD_FOLDER
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$root/tests/command.sh"

echo "== Rejected arguments"
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
--out|--out requires a value; see ./run --help
--params=x|--params: expected no value, found "x"; see ./run --help
--photo none.jpg|--photo: no such file: none.jpg
infoo|infoo: no such file or subcommand (did you mean info?); see ./run --help
--out a replay|the subcommand comes first: ./run replay ...; see ./run --help
colour|colour: no such file or subcommand; see ./run --help
run --photo none.jpg|--photo: no such file: none.jpg
--out a --json request.json|--json would overwrite a request file: request.json
--out a --events old --timeline ./old|--events and --timeline name the same file: ./old
--out a --timeline a|--timeline: expected a file, found a folder: a
--out a --json none/report|--json: no such folder: none
--out old|--out: expected a folder, found a file: old
--out a --record old|--record: expected a folder, found a file: old
info|missing FOLDER; see ./run info --help
info none|no such file: none
info --ouput a|unknown option --ouput; see ./run info --help
trim a|missing --out DIR; see ./run trim --help
trim a b --out c|unexpected argument b; see ./run trim --help
trim a --out c --frames 1,x|--frames: expected NUMBER, found "x"; see ./run trim --help
diff a|expected two runs, or --lib twice; see ./run diff --help
diff . . --out old|--out: expected a folder, found a file: old
diff a b --tolerance few|--tolerance: expected NUMBER, found "few"; see ./run diff --help
import|missing --out FILE; see ./run import --help
trials|missing REQUEST; see ./run trials --help
sdk|expected one folder; see ./run sdk --help
sdk --arm|unknown option --arm; see ./run sdk --help
sdk b|b: exists and is not an empty folder
sdk old|old: exists and is not an empty folder
conform --onyl x|unknown option --onyl; see ./run conform --help
conform --junit|--junit requires a value; see ./run conform --help
conform --only loadin|no such check: loadin; --list prints all; see ./run conform --help
conform --seed few|--seed: expected a whole number from 0 to 1000000, found "few"; see ./run conform --help
conform --seed nan|--seed: expected a whole number from 0 to 1000000, found "nan"; see ./run conform --help
conform --patience 0.5|--patience: expected a whole number from 0 to 1000000, found "0.5"; see ./run conform --help
conform --hammer -inf|--hammer: expected a number from 0 to 1000000, found "-inf"; see ./run conform --help
conform a.so b.so|unexpected argument b.so; see ./run conform --help
REFUSED
command_ends 2 mime.json b/minr.json none/mine.json
for line in 'mime.json: error: no such file (did you mean mine.json?)' 'b/minr.json: error: no such file (did you mean b/mine.json?)' \
  'none/mine.json: error: no such file'; do
  grep -qxF "$line" err || fail "\"$line\" is not printed: $(cat err)"
done

for baseline in none b; do
  command_ends 2 conform --perf --baseline "$baseline"
  grep -q "^$baseline: error: can't be read: " err || fail "$baseline is not reported as unreadable: $(cat err)"
done

echo "== Help and version, without a build"
export ORLU_BUILD=none
for help in --help -h; do
  command_ends 0 $help
  diff "$root/service/help.txt" out >&2 || fail "$help does not print service/help.txt"
done
command_ends 0 --version
grep -qF "project(orlu_vas VERSION $(cat out) " "$root/CMakeLists.txt" || fail "--version: $(cat out)"
export ORLU_BUILD=$1

echo "== Help and version of the Java half"
command_ends 0 samples/night.json --help
diff "$root/service/help.txt" out >&2 ||
  fail "service/help.txt is outdated; update it with ./run run --help >service/help.txt"
command_ends 0 --check --version
grep -qF "project(orlu_vas VERSION $(cat out) " "$root/CMakeLists.txt" || fail "--check --version: $(cat out)"
while read -r subcommand; do
  command_ends 0 "$subcommand" --help
  [ ! -s err ] || fail "$subcommand --help: $(cat err)"
  grep -q "^Usage: ./run $subcommand" out || fail "$subcommand --help begins with $(head -n 1 out)"
  if grep -n '.\{81\}' out; then fail "the help of $subcommand is wider than 80 columns"; fi
done < <(sed -n '/^Subcommands/,/^$/s/^  \([a-z]*\) .*/\1/p' "$root/service/help.txt")

echo "== Completion"
command_ends 0 completion
bash -n out || fail "the completion has a syntax error"
# completed LINE WORD...: expects that after this line bash offers these words (and possibly others), but not
# the words marked with "!".
completed() {
  local line=$1 word offered
  shift
  read -ra COMP_WORDS <<<"${line//=/ = }"
  [[ $line != *[\ =] ]] || COMP_WORDS+=('')
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  COMPREPLY=()
  _complete_run "${COMP_WORDS[0]}"
  offered=" ${COMPREPLY[*]} "
  for word in "$@"; do
    case $word in
      !*) [[ $offered != *" ${word#!} "* ]] || fail "after \"$line\" completion offers ${word#!}" ;;
      *) [[ $offered == *" $word "* ]] || fail "after \"$line\" completion lacks $word:$offered" ;;
    esac
  done
}
# Bash's own compopt fails outside a completion.
# shellcheck disable=SC2317 # the completion calls it
compopt() { :; }
# shellcheck disable=SC1091 # ./run completion wrote this file above
source out
touch photo.jpg lib.so
cd "$root" || exit 1
while IFS='|' read -r line offered; do
  read -ra words <<<"${offered//\~/$folder}"
  completed "${line//\~/$folder}" "${words[@]}"
done <<'CASES'
./run re|replay !trials
./run --ex|--explain !--params
./run -|--out --check --help !--frames
./run --out sam|samples
./run --explain exif_info|exif_info_for_write
./run --explain al|all algorithms
./run tags orlu.control.currentM|orlu.control.currentModeEx !orlu.control.algoType
./run parameters hdr_pro|hdr_process_type
./run algorithms ni|night !jpegEncode
./run formats RAW|RAW16 RAW_SENSOR !NV21
./run samples hdr|hdr5 hdr7 !night
./run new hdr|hdr5 hdr7 !night
./run samples/nig|samples/night.json samples/night-async.json
./run ~/|~/mine.json ~/a
./run --photo ~/p|~/photo.jpg
./run replay --against ~/|~/lib.so ~/a
./run trim -|--frames --no-pixels --out !--params
./run import ~/|~/photo.jpg ~/mine.json
./run import --algorithms ni|night
./run conform --p|--patience
./run diff samples/night.json samples/nig|samples/night-async.json
CASES
cd "$folder" || exit 1
completed "./run m" mine.json
# The kit prints the help of conform. The completion must offer the options in this help.
command_ends 0 conform --help
read -ra listed < <(sed -nE 's/^  (--[a-z-]+) .*/\1/p' out | xargs)
completed "./run conform -" "${listed[@]}"
[ ${#COMPREPLY[@]} -eq $((${#listed[@]} + 1)) ] ||
  fail "completion of conform: ${COMPREPLY[*]}, its help: ${listed[*]}"

echo "== Foreign text in the kit's reports and in the log"
# shows FILE: expects that FILE contains the foreign text in escaped form, without its raw control characters
# for terminals.
shows() {
  grep -qF 'a\u001b[2J\u009b\u202e' "$1" || fail "$1 lacks the text: $(cat "$1")"
  ! LC_ALL=C grep -q $'\e\|\xc2\x9b\|\xe2\x80\xae\|\xff' "$1" || fail "$1 has control characters: $(cat "$1")"
}

# The loader's message contains the library's name. The name is written in bytes, because in a locale without
# UTF-8 the shell does not convert \u.
library=$folder/$'a\e[2J\xc2\x9b\xe2\x80\xae\xff.so'
command_ends 1 conform "$library" --only loading --junit junit.xml
shows out
shows junit.xml
prints '\u202e\xff.so: '
sed -e "s#photos/#$root/samples/photos/#" -e 's/"type": "capture"/"type": "a\\u001b[2J\\u009b\\u202e"/' \
  "$root/samples/capture.json" >hostile.json
command_ends 0 --log --out images hostile.json
shows err

ended
