# Completion for bash. Install as bash-completion/completions/bomparser, or source it.

_bomparser_options() {
  case $1 in
    apply) echo "-t -o --stats --side-copy --threads --keep-going --help" ;;
    find) echo "-s -o --stats --side-copy --threads --help" ;;
    show) echo "-t --markup --newlines --tab-stop --only --color --help" ;;
    check) echo "--help" ;;
    learn) echo "-t --lines --auxiliary -o --help" ;;
    *) echo "--template --input --help --version" ;;
  esac
}

_bomparser() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
  [ "$COMP_CWORD" -le 1 ] && command=
  local words=
  case $before in
    -t | -o | --stats | --template | --input) ;;  # A file.
    -s) compopt -o dirnames 2>/dev/null; return ;;
    --color) words="auto always never" ;;
    --only) words="entity auxiliary unmatched ignored" ;;
    --threads | --tab-stop | --lines) return ;;  # A number.
    *)
      words=$(_bomparser_options "$command")
      [ -z "$command" ] && words="apply find show check learn $words"
      [ -n "$command" ] && [ "${word:0:1}" != - ] && words=
      ;;
  esac
  COMPREPLY=($(compgen -W "$words" -- "$word"))
}

complete -o default -F _bomparser bomparser
