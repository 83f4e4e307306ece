# Completion of oxdiag-view for bash: source this file, or put it into the folder that
# `pkg-config --variable=completionsdir bash-completion` names, as oxdiag-view.

_oxdiag_view() {
  local word=${COMP_WORDS[COMP_CWORD]} index option choices='' has_file=''
  local -A given=()
  COMPREPLY=()
  case ${COMP_WORDS[COMP_CWORD - 1]} in
    --color) mapfile -t COMPREPLY < <(compgen -W "auto always never" -- "$word") && return ;;
    --perfetto | --html) mapfile -t COMPREPLY < <(compgen -f -- "$word") && return ;;
    --filter | --rate | --start) return ;;
  esac
  for ((index = 1; index < COMP_CWORD; ++index)); do
    case ${COMP_WORDS[index]} in
      --help | --version) return ;;
      --color | --perfetto | --html | --filter | --rate | --start) given[${COMP_WORDS[index]}]=1 && ((index += 1)) ;;
      --*) given[${COMP_WORDS[index]}]=1 ;;
      *) has_file=1 ;;
    esac
  done
  for option in --dump --follow --summary --jsonl --perfetto --html --filter --rate --start --color; do
    [[ ${given[$option]-} ]] || choices+=" $option"
  done
  ((COMP_CWORD > 1)) || choices+=' --help --version'
  mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$word")
  [[ $has_file || $word == --* ]] || mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$word")
}

complete -o filenames -F _oxdiag_view oxdiag-view
