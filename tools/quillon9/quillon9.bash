# Completion of quillon9 for bash.

_quillon9_options() {
  case $1 in
    generate) echo '--namespace= --namespace-of= --root= --output= --map= --rename= --catalog= --include-path=
                    --split --split=schema --value-rules= --dependency-file= --dependency-target= --list-outputs --report --report=
                    --documentation= --example --example= --help' ;;
    convert) echo '--to= --compress= --format --no-format --declaration --no-declaration --suggested-encodings
                   --keep-space --large --quiet --help' ;;
    records) echo '--path= --prefix= --count --output= --each= --plan= --range= --to= --compress= --format --no-format
                   --declaration --no-declaration --keep-going --quiet --help' ;;
    tree) echo '--keep-space --help' ;;
    inspect) echo '--full --help' ;;
  esac
}

_quillon9() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} words=
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    mapfile -t COMPREPLY < <(compgen -W 'generate convert records tree inspect --help --version' -- "$word")
    return
  fi
  # "=" is a word of its own where it breaks words.
  if [[ $word == = ]]; then
    word=
  elif [[ $before == = ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  case $command:$before in
    convert:--to | convert:-t | records:--to | records:-t) words='xml finf' ;;
    convert:--compress | convert:-z | records:--compress | records:-z) words='none gzip zlib' ;;
    generate:--value-rules) words='schema classic' ;;
    *) [[ $word != -* ]] || words=$(_quillon9_options "$command") ;;
  esac
  case $command:$before in
    generate:--namespace | generate:-n | generate:--namespace-of | generate:--root) return ;;
    records:--path | records:-p | records:--prefix | records:--each | records:--plan | records:--range) return ;;
    generate:--map | generate:--rename | generate:--dependency-target) return ;;
    generate:--output | generate:-o | generate:--include-path | generate:-I | generate:--documentation)
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -d -- "$word")
      return
      ;;
  esac
  if [[ -n $words ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    [[ ${#COMPREPLY[@]} != 1 || ${COMPREPLY[0]} != *= ]] || compopt -o nospace
  else
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}

complete -F _quillon9 quillon9
