# Completion of oxdiagctl for bash: source this file, or put it into the folder that
# `pkg-config --variable=completionsdir bash-completion` names, as oxdiagctl.

_oxdiagctl() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command= choices=
  local index
  for ((index = 1; index < COMP_CWORD; ++index)); do
    case ${COMP_WORDS[index]} in
      list | trace | assert) command=${COMP_WORDS[index]} && break ;;
    esac
  done
  case $before in
    --at) mapfile -t COMPREPLY < <(compgen -f -- "$word") && return ;;
    --destination) choices='vex serial file' ;;
    --category) choices='default warning statusWarning statusFatal' ;;
    --push | --pop | --raw | --help) ;;
    --*) choices='on off' ;;
  esac
  case $command in
    '') choices='list trace assert --at --help' ;;
    list) choices='--at --help' ;;
    *) [[ $before == --destination || $before == --category ]] ||
      choices+=" --push --pop --raw --at --help $("${COMP_WORDS[0]}" words "$command" 2>/dev/null)" ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$word")
}

complete -F _oxdiagctl oxdiagctl
