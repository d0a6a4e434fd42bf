# Completion of the three programs' options and files, for bash. The options are read from --help,
# so that there is one list of them.
_vireo2() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    case $before in
    --format)
        mapfile -t COMPREPLY < <(compgen -W "text csv json" -- "$word")
        return
        ;;
    esac
    if [[ $word == -* ]]; then
        local options
        options=$("$1" --help 2>/dev/null | grep -oE -- '--[a-z][a-z-]+' | sort -u)
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
        return
    fi
    compopt -o default 2>/dev/null
}
complete -F _vireo2 vireo2 vireo2-console vireo2-target
