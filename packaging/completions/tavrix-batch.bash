# Completions of tavrix-batch for bash.
_tavrix_batch() {
    local current=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]}
    if [[ $option == = ]]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
    elif [[ $current == = ]]; then
        current=
    fi
    case $option in
        --format | -f)
            mapfile -t COMPREPLY < <(compgen -W "0 1 2 3 4 5" -- "$current")
            return
            ;;
        --existing)
            mapfile -t COMPREPLY < <(compgen -W "replace keep skip ask" -- "$current")
            return
            ;;
        --output | -o)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            return
            ;;
    esac
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "--format --output --existing --from --to --dry-run --quiet --verbose --json --system --help --version -f -o -n -q -v -h" -- "$current")
    else
        compopt -o filenames -o default
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}
complete -F _tavrix_batch tavrix-batch
