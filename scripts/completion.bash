# shellcheck shell=bash
# Completes ./run in bash: source <(./run completion). What there is to complete is read from the checkout of the ./run
# that is typed, from service/command and the tables of tags and parameters.

# _orlu_offer WORD...: those that begin with what is typed; without words, the lines of standard input.
_orlu_offer() {
  local word words=("$@")
  [ $# -gt 0 ] || mapfile -t words
  for word in "${words[@]}"; do
    [[ $word != "$typed"* ]] || COMPREPLY+=("$word")
  done
}

# _orlu_paths ACTION [PATTERN]: directories, and files too when the action is "file"; only those that end so.
_orlu_paths() {
  local path
  compopt -o filenames 2>/dev/null
  while IFS= read -r path; do
    if [ -d "$path" ] || [[ $1 = file && $path == *${2:-} ]]; then
      COMPREPLY+=("$path")
    fi
  done < <(compgen -f -- "$typed")
}

# _orlu_column FILE: the first column of a table.
_orlu_column() { sed -nE '/^#/d; s/^([^ ]+).*/\1/p' "$1" 2>/dev/null | sort -u; }

# _orlu_requests: request files, or a sample by its name alone.
_orlu_requests() {
  local sample
  _orlu_paths file .json
  [ ${#COMPREPLY[@]} -eq 0 ] || return
  for sample in "$root"/samples/"$typed"*.json; do
    [ ! -e "$sample" ] || COMPREPLY+=("${sample#./}")
  done
}

# _orlu_parameters: keys, and with a slash their sections before them.
_orlu_parameters() {
  local section key rest
  while read -r section key rest; do
    case $section in
      '' | '#'*) ;;
      *) if [[ $typed == */* ]]; then _orlu_offer "$section/$key"; else _orlu_offer "$key"; fi ;;
    esac
  done <"$java/tags/parameters.txt"
}

# _orlu_checks: the checks of ./run conform, as its page has them in a table.
# shellcheck disable=SC2016 # these quotes are the page's
_orlu_checks() { sed -nE 's/^\| `([A-Za-z]+)` \|.*/\1/p' "$root/docs/conformance.md"; }

# _orlu_value LABEL: values of an option or argument that the help labels so.
_orlu_value() {
  local java=$root/service/java/com/orlu/orlu3rdalgoservice/tool
  case $1 in
    DIR | FOLDER) _orlu_paths directory ;;
    LIBRARY) _orlu_paths file .so ;;
    request.json) _orlu_requests ;;
    FILE | A) _orlu_paths file ;;
    KEY) _orlu_parameters ;;
    '[SECTION/]KEY')
      _orlu_offer all algorithms
      _orlu_parameters
      ;;
    TAG) _orlu_offer < <(_orlu_column "$root/host/java/android/hardware/camera2/impl/tags.txt") ;;
    ALGORITHM) _orlu_offer < <(_orlu_column "$java/tags/algorithms.txt") ;;
    FORMAT) _orlu_offer < <(_orlu_column "$java/tags/formats.txt") ;;
    KIND) _orlu_offer < <(cd "$root/samples" && printf "%s\n" *.json | sed "s/\.json$//") ;;
    SAMPLE) _orlu_offer < <(cd "$root/samples" && printf '%s\n' *.json | sed 's/\.json$//') ;;
    CHECK) _orlu_offer < <(_orlu_checks) ;;
  esac
}

# _orlu_run COMMAND: fills COMPREPLY, as "complete -F" asks for.
_orlu_run() {
  local typed=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} first=${COMP_WORDS[1]:-}
  local root name argument value launch command=run positional='' label='' options=() listed=()
  local -A is_command=()
  root=$(dirname "${1/#\~/$HOME}")
  COMPREPLY=()
  # Bash takes --out=DIR apart.
  if [ "$typed" = = ]; then
    typed=''
  elif [ "$option" = = ]; then
    option=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  if [ ! -e "$root/service/command/options.txt" ]; then
    _orlu_paths file
    return
  fi
  if [ "$COMP_CWORD" -gt 1 ] && grep -q "^$first  *\. " "$root/service/command/options.txt"; then
    command=$first
  fi
  while read -r name argument value launch; do
    case $name/$argument in
      */.) [ "$value" != listed ] || listed+=("$name") ;;
      "$command"/-) positional=$value ;;
      "$command/$option") label=${value#-} options+=("$argument") ;;
      "$command"/*) options+=("$argument") ;;
    esac
  done <"$root/service/command/options.txt"
  if [ -n "$label" ]; then
    _orlu_value "$label"
  elif [[ $typed == -* ]]; then
    _orlu_offer "${options[@]}"
  else
    [ "$COMP_CWORD" -gt 1 ] || _orlu_offer "${listed[@]}"
    _orlu_value "$positional"
  fi
}

complete -F _orlu_run run
