# Completion of rowlark for bash.

_rowlark() {
  local command='' cur=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} word options

  # "--words=any" comes as three words.
  if [[ $cur == '=' ]]; then cur=''; elif [[ $option == '=' ]]; then option=${COMP_WORDS[COMP_CWORD - 2]}; fi
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $command:$word in
      :search | :profiles | :history) command=$word ;;
      profiles:list | profiles:show | profiles:set | profiles:remove | history:list | history:clear) command+=-$word ;;
    esac
  done

  # What may be the value of an option; of those that are not named anything.
  case $option in
    --words) COMPREPLY=($(compgen -W 'all any cell' -- "$cur")) ;;
    --print) COMPREPLY=($(compgen -W 'csv rows json' -- "$cur")) ;;
    --language) COMPREPLY=($(compgen -W '@ROWLARK_LANGUAGES@' -- "$cur")) ;;
    --encoding) COMPREPLY=($(compgen -W "$(iconv --list 2>/dev/null | sed 's|//.*||')" -- "$cur")) ;;
    --jump-first-row | --dont-save) COMPREPLY=($(compgen -W 'yes no' -- "$cur")) ;;
    --config) compopt -o default ;;
    --header | --separator | --memory | --range | --columns | --jump | --filter | --sheet) ;;
    *) option= ;;
  esac
  [[ -z $option ]] || return 0

  options='--help --config --language'
  case $command in
    '') options+=' --version --header --separator --encoding --memory --follow' ;;
    search) options+=' --words --match-case --go-to --range --columns --jump --header --filter --separator --encoding
                       --memory --sheet --print --remember' ;;
    profiles | history) options=--help ;;
    profiles-set) options+=' --range --columns --jump --jump-first-row --dont-save' ;;
  esac
  if [[ $cur == -* ]]; then
    COMPREPLY=($(compgen -W "$options" -- "$cur"))
    return
  fi

  case $command in
    '') COMPREPLY=($(compgen -W 'search profiles history' -- "$cur")) ;;&
    '' | search)
      compopt -o filenames
      mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- "$cur")
      ;;
    profiles) COMPREPLY=($(compgen -W 'list show set remove' -- "$cur")) ;;
    history) COMPREPLY=($(compgen -W 'list clear' -- "$cur")) ;;
    profiles-show | profiles-set | profiles-remove)
      compopt -o filenames  # quotes what needs it
      while IFS=$'\t' read -r word _; do
        [[ $word != "$cur"* ]] || COMPREPLY+=("$word")
      done < <("${COMP_WORDS[0]/#\~/$HOME}" profiles list 2>/dev/null)
      ;;
  esac
}
complete -F _rowlark rowlark
