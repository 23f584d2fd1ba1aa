# bash completion for kestrel-map

_kestrel_map()
{
    local word=$2 before=$3 command=${COMP_WORDS[1]} options=
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "info check render diff export import set rescue --help --version" -- "$word")
        return
    fi
    case "$before" in
    --view) options="art features costs analysis" ;;
    --style) options="solid dot frame" ;;
    --feature) options="hilow woods town road misclosblock" ;;
    --no-go) options="1 2 3" ;;
    --cost) options="clear rough1 rough2 rough3 rough4 water" ;;
    --to) options="csv json asc" ;;
    --from) options="csv json" ;;
    esac
    if [ -z "$options" ]; then
        case "$command" in
        rescue) [ "$COMP_CWORD" -ne 2 ] || options="list show restore drop" ;;
        esac
        if [ "${word#-}" != "$word" ]; then
            case "$command" in
            info) options="--json" ;;
            check) options="--json -j" ;;
            render) options="-o --view --grid --numbers --style --feature --no-go --cost --area --scale" ;;
            diff) options="-o --json" ;;
            export) options="--to -o" ;;
            import) options="--from -i" ;;
            set) options="--feature --no-go --cost --clear --mask --all --threshold" ;;
            rescue) options="--force" ;;
            esac
            options="$options --help"
        fi
    fi
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
    [ ${#COMPREPLY[@]} -gt 0 ] || mapfile -t COMPREPLY < <(compgen -f -- "$word")
}
complete -o filenames -F _kestrel_map kestrel-map
