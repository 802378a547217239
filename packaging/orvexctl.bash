# bash completion for orvexctl

_orvexctl() {
  local commands='ports find show set save send diff factory load'
  local common='--port --device --settings --parity --json --quiet --trace --help --version'
  local names='RSBAUD RSPRTY RSBITS RSSTOP RSDELY RSCTSE SPVOLU PREFIX PRECID SUFFIX SUFFCR CD39EN
    CD39SS CD128E PDF417 MAG1EN MAG2EN MAG3EN MAGLRC MAGRAW NOREAD POWSET SPPOWB SPPARA SERIEN'
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' own='' i
  COMPREPLY=()
  case $before in
    --port) mapfile -t COMPREPLY < <(compgen -W '1 2 3 4 5 6' -- "$word"); return ;;
    --parity) mapfile -t COMPREPLY < <(compgen -W 'N O E' -- "$word"); return ;;
    --device) mapfile -t COMPREPLY < <(compgen -f -- "${word:-/dev/}"); return ;;
    --trace) mapfile -t COMPREPLY < <(compgen -f -- "$word"); return ;;
    --settings | --restart-wait) return ;;
  esac
  for ((i = 1; i < COMP_CWORD; i++)); do
    case ${COMP_WORDS[i - 1]} in
      --port | --parity | --device | --trace | --settings | --restart-wait) continue ;;
    esac
    [[ " $commands " != *" ${COMP_WORDS[i]} "* ]] || { command=${COMP_WORDS[i]}; break; }
  done
  case $command in
    set) own='--dry-run' ;;
    send) own='--dry-run' ;;
    factory) own='--yes' ;;
    load) own='--fast --allow-older --restart-wait' ;;
  esac
  if [[ $word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$common $own" -- "$word")
    return
  fi
  case $command in
    '') mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$word") ;;
    show) mapfile -t COMPREPLY < <(compgen -W "$names" -- "${word^^}") ;;
    set)
      mapfile -t COMPREPLY < <(compgen -W "$names" -S = -- "${word^^}")
      compopt -o nospace 2>/dev/null
      ;;
    save | send | diff | load) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
  esac
}
complete -o filenames -F _orvexctl orvexctl
