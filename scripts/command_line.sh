# shellcheck shell=bash
# What the launcher must know of a command line before it starts the Java half. Sourced by run; the caller
# sets root. The options themselves stand in Java, and service/command/options.txt is made of them.

# read_command_line ARGUMENT...: sets command to the subcommand, "run" when none is named, and launches to the
# words that the table has in its last column for the subcommand and for each of its options that is given.
# Unknown is set to the first option that the subcommand has not, and stray to the first word that is neither
# a file nor an option's value.
read_command_line() {
  local name argument value launch table known awaited=''
  local -A launch_of=() value_of=()
  command=run launches=' ' unknown='' stray='' options=() subcommands=()
  table=$(<"$root/service/command/options.txt")
  while read -r name argument value launch; do
    launch_of[$name $argument]=$launch
    value_of[$name $argument]=$value
    [ "$argument $value" != ". listed" ] || subcommands+=("$name")
  done <<<"$table"
  if [ $# -gt 0 ] && [ -n "${launch_of[$1 .]:-}" ]; then
    command=$1
  fi
  mapfile -t options < <(sed -n "s/^$command  *\(-[^ ][^ ]*\).*/\1/p" <<<"$table")
  for argument in . "$@"; do
    [ "$argument" != -- ] || break
    known=${launch_of[$command ${argument%%=*}]:-}
    launches+="${known:--} "
    if [ -n "$awaited" ] && [ -z "$known" ]; then
      awaited=''
      continue
    fi
    awaited=''
    case $argument in
      -?*)
        [ -n "$known" ] || unknown=${unknown:-$argument}
        [[ $argument = *=* || ${value_of[$command $argument]:--} = - ]] || awaited=yes
        ;;
      .) ;;
      "$command") ;;
      *) [ -e "$argument" ] || [[ ! $argument =~ ^[A-Za-z]+$ ]] || stray=${stray:-$argument} ;;
    esac
  done
}

# launches WORD: whether this is one of them.
launches() { [[ $launches == *" $1 "* ]]; }

# refuse_unknown: ends the launcher when the command line has an option or a subcommand that is none.
refuse_unknown() {
  local help="./run $command --help"
  [ "$command" != run ] || help="./run --help"
  if [ -n "$unknown" ]; then
    refuse "unknown option $unknown$(did_you_mean "${unknown%%=*}" "${options[@]}"); see $help"
  elif [ "$command" = run ] && [ -n "$stray" ]; then
    if [[ " ${subcommands[*]} " == *" $stray "* ]]; then
      refuse "the subcommand comes first: ./run $stray ...; see $help"
    fi
    refuse "$stray: no such file or subcommand$(did_you_mean "$stray" "${subcommands[@]}"); see $help"
  fi
}

# refuse PROBLEM: ends the launcher as a command line that can't be taken.
refuse() {
  echo "run: $1" >&2
  exit 2
}

# did_you_mean WORD KNOWN...: a question in brackets on the known word that is nearest: at most a third of the
# letters are wrong, and not more than four. Nothing when none is near.
did_you_mean() {
  printf '%s\n' "$@" | awk '
    function least(a, b) { return a < b ? a : b }
    function edits(word, other,   i, j, row, last) {
      for (j = 0; j <= length(other); ++j) last[j] = j
      for (i = 1; i <= length(word); ++i) {
        row[0] = i
        for (j = 1; j <= length(other); ++j)
          row[j] = least(least(last[j], row[j - 1]) + 1,
            last[j - 1] + (substr(word, i, 1) != substr(other, j, 1)))
        for (j in row) last[j] = row[j]
      }
      return last[length(other)]
    }
    NR == 1 { word = tolower($0); near = least(4, int(length(word) / 3)) + 1; next }
    {
      begins = length(word) > 4 && index(tolower($0), word) == 1
      count = begins ? 1 : edits(word, tolower($0))
      if (count < near) { near = count; nearest = $0 }
    }
    END { if (nearest != "") printf " (did you mean %s?)", nearest }'
}
