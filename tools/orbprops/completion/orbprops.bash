# tools/orbprops/completion/orbprops.bash: completion of orbprops for bash.

_orbprops() {
  local word=${COMP_WORDS[COMP_CWORD]} command="" i
  local options="-j --json -t --timing -s --strict -l --loopback -v --verbose -V --version -h --help"
  for ((i = 1; i < COMP_CWORD; i++)); do
    if [[ ${COMP_WORDS[i]} != -* ]]; then
      command=${COMP_WORDS[i]}
      break
    fi
  done
  if [[ $word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
  elif [[ -z $command ]]; then
    mapfile -t COMPREPLY < <(compgen -W "report get keys filesystems interfaces users" -- "$word")
  elif [[ $command == get ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$("${COMP_WORDS[0]}" keys 2>/dev/null)" -- "$word")
  else
    COMPREPLY=()
  fi
}

complete -F _orbprops orbprops
