# Completion of quorvelctl for bash.

_quorvelctl_applications() {
    quorvelctl --json status 2>/dev/null |
        sed -n '/"bindings"/,/"displays"/ s/^ *"name": "\(.*\)",$/\1/p' | sort -u
}

_quorvelctl() {
    local word=${COMP_WORDS[COMP_CWORD]} command= each
    for each in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ $each == -* ]] || { command=$each; break; }
    done
    local IFS=$'\n'
    case $command in
        "") COMPREPLY=($(compgen -W $'status\ndoctor\nwhy\ntoggle\nreveal\nuntuck\nreload\n--json\n--help\n--version' -- "$word")) ;;
        toggle | reveal)
            COMPREPLY=($(compgen -W "$(_quorvelctl_applications)" -- "$word"))
            COMPREPLY=("${COMPREPLY[@]// /\\ }")
            ;;
        untuck) COMPREPLY=($(compgen -W "--all" -- "$word")) ;;
        *) COMPREPLY=() ;;
    esac
}

complete -F _quorvelctl quorvelctl
