# Completes parcelo's arguments in bash.
_parcelo()
{
    local current=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} words=
    # "--type=zip" is three words to bash.
    [[ $current != = ]] || current=
    [[ $option != = ]] || option=${COMP_WORDS[COMP_CWORD - 2]}
    case $option in
        --to) compopt +o default -o dirnames ;;
        --name) compopt +o default ;;
        --type) words="zip mac-zip tar.gz dmg" ;;
        --level) words="0 1 2 3 4 5 6 7 8 9" ;;
        *) [[ $current != -* ]] || words="--to --name --type --level --keep-ds-store --password-stdin
            --quiet --here --email --preferences --help --version" ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
# Where there is nothing to say, files are completed.
complete -o default -F _parcelo parcelo
