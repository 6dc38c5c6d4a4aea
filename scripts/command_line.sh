# shellcheck shell=bash
# What the launcher must know of a command line before it starts the Java half. Sourced by run; the caller sets root.
# The options themselves stand in Java, and service/command/options.txt is made of them.

# read_command_line ARGUMENT...: sets command to the subcommand, "run" when none is named, and launches to the words
# that the table has in its last column for the subcommand and for each of its options that is given.
read_command_line() {
  local name argument value launch table
  local -A launch_of=()
  command=run
  launches=' '
  table=$(<"$root/service/command/options.txt")
  while read -r name argument value launch; do
    launch_of[$name $argument]=$launch
  done <<<"$table"
  if [ $# -gt 0 ] && [ -n "${launch_of[$1 .]:-}" ]; then
    command=$1
  fi
  for argument in . "$@"; do
    [ "$argument" != -- ] || break
    launches+="${launch_of[$command ${argument%%=*}]:--} "
  done
}

# launches WORD: whether this is one of them.
launches() { [[ $launches == *" $1 "* ]]; }
