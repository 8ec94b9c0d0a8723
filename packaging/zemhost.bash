# Completion for zemhost(1) in bash: commands, options, the values of options, and file names.

# The options of a command; of the program itself without one.
_zemhost_options() {
  case $1 in
    '') echo '-h --help --version' ;;
    check) echo '-h --help --read --json' ;;
    compare) echo '-h --help --by --json --encoding' ;;
    duplicates) echo '-h --help --length --loose --same-album --json --encoding' ;;
    export) echo '-h --help --format --excel -o --output --playlist --all-playlists --since-sync --fields --paths --encoding' ;;
    info | playlists) echo '-h --help --encoding' ;;
    plays) echo '-h --help --by --top --encoding' ;;
    report) echo '-h --help -o --output --title --playlist --no-covers --privacy' ;;
    stats) echo '-h --help --by --measure --top --json --encoding' ;;
    songs) echo '-h --help --columns --encoding' ;;
    playlist) echo '-h --help --columns --evaluate --day --encoding' ;;
    rescue) echo '-h --help --pattern --playlist --playlists --tags --covers --verify --skip-damaged --dry-run' ;;
    *) echo '-h --help' ;;
  esac
}

# The values of an option of a command, where they are few; "FILE" where a file is asked for, "TEXT" for anything else,
# and nothing for an option that takes no value.
_zemhost_values() {
  case $1:$2 in
    plays:--by) echo 'song artist album' ;;
    stats:--by) echo 'artist album genre year decade kind rating month' ;;
    stats:--measure) echo 'songs time size plays' ;;
    compare:--by) echo 'song artist album genre composer' ;;
    export:--format) echo 'csv tsv json ndjson m3u8 xspf sqlite listenbrainz' ;;
    export:--paths) echo 'host relative device' ;;
    export:-o | export:--output | export:--all-playlists | report:-o | report:--output) echo FILE ;;
    export:--playlist | export:--fields | *:--columns | *:--length | *:--top | *:--day | *:--encoding) echo TEXT ;;
    rescue:--playlists) echo 'none m3u8 xspf' ;;
    report:--title | report:--playlist | rescue:--pattern | rescue:--playlist) echo TEXT ;;
    *) ;;
  esac
}

_zemhost() {
  local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' values='' word
  # bash takes --option=value apart at the equals sign.
  if [[ $current == = ]]; then
    current=
  elif [[ $before == = ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    if [[ $word != -* ]]; then
      command=$word
      break
    fi
  done
  if [[ $before == -* ]]; then values=$(_zemhost_values "$command" "$before"); fi
  if [[ -n $values && $values != FILE ]]; then
    if [[ $values == TEXT ]]; then values=; fi
    mapfile -t COMPREPLY < <(compgen -W "$values" -- "$current")
  elif [[ -z $values && $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$(_zemhost_options "$command")" -- "$current")
  elif [[ -z $command ]]; then
    mapfile -t COMPREPLY < <(compgen -W 'call check class compare covers duplicates export info photos playlist playlists plays report rescue songs stats verify' -- "$current")
  else
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}

complete -F _zemhost zemhost
