# Completion of oxdiagctl for bash: source this file, or put it into the folder that
# `pkg-config --variable=completionsdir bash-completion` names, as oxdiagctl.

# Whether a word stands in front of the one that is completed.
_oxdiagctl_has() {
  local index
  for ((index = 1; index < COMP_CWORD; ++index)); do
    [[ ${COMP_WORDS[index]} != "$1" ]] || return 0
  done
  return 1
}

# Words that oxdiagctl itself takes; $1 is the command.
_oxdiagctl_own() {
  if [[ $1 == trace || $1 == assert ]]; then
    _oxdiagctl_has --push || _oxdiagctl_has --pop || echo --push
    _oxdiagctl_has --push || _oxdiagctl_has --pop || ((words)) || echo --pop
    _oxdiagctl_has --raw || echo --raw
  fi
  _oxdiagctl_has --at || echo --at
  echo --help
}

# What may follow `option` and the `values` words behind it; "more" in front when the next option
# may as well.
_oxdiagctl_values() {
  case $option in
    --prefixwidth) ((values)) && echo more ;;
    --mutex-kernel-token) ;;
    --destination)
      case $values:${COMP_WORDS[COMP_CWORD - values]} in
        0:*) echo vex serial file ;;
        1:serial) echo more 115200 57600 38400 19200 9600 4800 2400 2000 1800 1200 ;;
        1:file) echo more overwrite append ;;
        *) echo more ;;
      esac
      ;;
    --category) ((values)) && echo more || echo default warning statusWarning statusFatal ;;
    --on | --off | --calibrate | --filter | '') echo more ;;
    *) ((values)) && echo more || echo more on off ;;
  esac
}

_oxdiagctl() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  local command='' option='' choices='' index
  local -i values=0 words=0
  COMPREPLY=()
  for ((index = 1; index < COMP_CWORD; ++index)); do
    case ${COMP_WORDS[index]} in
      --help | --version) return ;;
      --at) ((index += 1)) ;;
      --push | --pop | --raw) option='' ;;
      --*) option=${COMP_WORDS[index]} values=0 words=1 ;;
      *) [[ $command ]] && ((values += 1)) || command=${COMP_WORDS[index]} ;;
    esac
  done
  [[ $before != --at ]] || { mapfile -t COMPREPLY < <(compgen -f -- "$word") && return; }
  case $command in
    '') choices="list trace assert version $(_oxdiagctl_own) --version" ;;
    list | version) choices=$(_oxdiagctl_own) ;;
    trace | assert)
      choices=$(_oxdiagctl_values)
      if [[ $choices == more* ]]; then
        choices="${choices#more} $(_oxdiagctl_own "$command")"
        _oxdiagctl_has --pop ||
          choices+=" $("${COMP_WORDS[0]}" words "$command" 2>/dev/null)"
      fi
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$word")
}

complete -F _oxdiagctl oxdiagctl
