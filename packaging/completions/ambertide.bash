# bash completion for ambertide
_ambertide() {
    local word=${COMP_WORDS[COMP_CWORD]}
    COMPREPLY=()
    case $COMP_CWORD:${COMP_WORDS[1]} in
    1:*) mapfile -t COMPREPLY < <(compgen -W "set get --help --version" -- "$word") ;;
    2:set) mapfile -t COMPREPLY < <(compgen -W "1000 1900 2700 3400 4200 5500 6500" -- "$word") ;;
    esac
}
complete -F _ambertide ambertide
