# Completions of tavrix-inspect for bash.
_tavrix_inspect() {
    local current=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]}
    if [[ $option == = ]]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
    elif [[ $current == = ]]; then
        current=
    fi
    if [[ $option == --export ]]; then
        mapfile -t COMPREPLY < <(compgen -W "wav mov mov-fast" -- "$current")
    elif [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "--json --thorough --export --output --from --to --size --replace --progress --system --full-paths --help --version" -- "$current")
    else
        compopt -o filenames -o default
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}
complete -F _tavrix_inspect tavrix-inspect
