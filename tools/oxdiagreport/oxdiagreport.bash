# Completion of oxdiagreport for bash: source this file, or put it into the folder that
# `pkg-config --variable=completionsdir bash-completion` names, as oxdiagreport.

_oxdiagreport() {
  local word=${COMP_WORDS[COMP_CWORD]} index choices='' has_file=''
  local -A given=()
  COMPREPLY=()
  case ${COMP_WORDS[COMP_CWORD - 1]} in
    --format) mapfile -t COMPREPLY < <(compgen -W "text json" -- "$word") && return ;;
    --words) mapfile -t COMPREPLY < <(compgen -f -- "$word") && return ;;
    --symbols) mapfile -t COMPREPLY < <(compgen -d -- "$word") && return ;;
    --language) mapfile -t COMPREPLY < <(compgen -W "english german" -- "$word") && return ;;
  esac
  for ((index = 1; index < COMP_CWORD; ++index)); do
    case ${COMP_WORDS[index]} in
      --help | --version) return ;;
      --words) ((index += 1)) ;;
      --format | --language | --symbols) given[${COMP_WORDS[index]}]=1 && ((index += 1)) ;;
      *) has_file=1 ;;
    esac
  done
  [[ ${given[--format]-} ]] || choices+=' --format'
  [[ ${given[--language]-} ]] || choices+=' --language'
  [[ ${given[--symbols]-} ]] || choices+=' --symbols'
  choices+=' --words'
  ((COMP_CWORD > 1)) || choices+=' --help --version'
  mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$word")
  [[ $has_file || $word == --* ]] || mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$word")
}

complete -o filenames -F _oxdiagreport oxdiagreport
