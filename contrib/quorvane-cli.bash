# Completion of quorvane-cli for bash. To be sourced, or copied to
# /usr/share/bash-completion/completions/quorvane-cli.

_quorvane_cli() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local command=${COMP_WORDS[1]:-}
    local password='--password-fd --password-file' options
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W 'info cat create passwd note migrate verify --help --version' -- "$word")
        return
    fi
    case $before in
        -f | --format)
            mapfile -t COMPREPLY < <(compgen -W 'text rtf html rtfd body' -- "$word")
            return
            ;;
        --note | --set | --password-fd | --new-password-fd) return ;;
        -o | --output | --from | --password-file | --new-password-file)
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            compopt -o filenames 2>/dev/null
            return
            ;;
    esac
    case $command in
        info) options='--json' ;;
        cat) options="--format --output $password" ;;
        create) options="--from --note --force $password" ;;
        passwd) options="$password --new-password-fd --new-password-file" ;;
        note) options="--set $password" ;;
        migrate) options="--dry-run $password --ask-password" ;;
        verify) options="$password --ask-password" ;;
    esac
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options --help" -- "$word")
        return
    fi
    mapfile -t COMPREPLY < <(compgen -f -X '!*.quorvane' -- "$word"; compgen -d -- "$word")
    compopt -o filenames 2>/dev/null
}

complete -F _quorvane_cli quorvane-cli
