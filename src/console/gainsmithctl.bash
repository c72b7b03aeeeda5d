# Completion of gainsmithctl for bash.
_gainsmithctl() {
  local verbs="ports doctor show save diff load reset errors step move watch"
  local common="--port --baud --device --json --quiet --yes --log-frames --help --version"
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} verb="" own="" word
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    [[ " $verbs " == *" $word "* ]] && verb=$word && break
  done
  case $previous in
    --port)
      mapfile -t COMPREPLY < <(compgen -W "COM1 COM2 COM3 COM4 COM5 COM6 COM7 COM8 COM9 COM10 COM11 \
        COM12 $(compgen -G '/dev/tty[UA]*') $(compgen -G '/dev/serial/by-id/*')" -- "$current")
      return ;;
    --baud) mapfile -t COMPREPLY < <(compgen -W "9600 19200 38400" -- "$current"); return ;;
    --erase) mapfile -t COMPREPLY < <(compgen -W "current all" -- "$current"); return ;;
    -o | --output | --log-frames) mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
  esac
  case $verb in
    "") own=$verbs ;;
    doctor) own="--scan --numbers" ;;
    load) own="--store --dry-run" ;;
    errors) own="--erase" ;;
    step) own="--kp --ki --output" ;;
    watch) own="--trace-ms --count --output" ;;
    move)
      own="--velocity --acceleration --distance --interval --repeat --trace-ms --position-kp
        --position-kd --velocity-kp --velocity-ki --kvff --kaff --low-position-kp
        --low-position-ki --low-position-kd --low-velocity-kp --low-velocity-ki --output" ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$own $common" -- "$current")
  [[ $verb == diff ]] && mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -W "drive factory" -- "$current")
  if [[ $current != -* && $verb =~ ^(save|diff|load)$ ]]; then
    mapfile -t COMPREPLY < <(printf '%s\n' "${COMPREPLY[@]}" | grep -v '^-'; compgen -f -- "$current")
  fi
}
complete -o filenames -F _gainsmithctl gainsmithctl
