# What lab/run hands to the guest: the settings that lab/guest/boot reads and the command to run.

# Prints "export NAME=VALUE" lines for what --env asks for and for test and lab settings.
print_exports() {
    local variable name
    for variable in "${variables[@]}" $(compgen -e | grep -E '^(GTEST|ASAN|LSAN|UBSAN|TSAN)_|^LANG$'); do
        name=${variable%%=*}
        [[ $name =~ ^[A-Za-z_][A-Za-z_0-9]*$ ]] || die "--env: '$name' is no variable name"
        case $variable in
            *=*) printf 'export %s=%q\n' "$name" "${variable#*=}" ;;
            *) [ -z "${!name+set}" ] || printf 'export %s=%q\n' "$name" "${!name}" ;;
        esac
    done
}

# Directories that the guest's own /tmp, /run and /dev would hide, the outer ones first.
print_hidden() {
    local directory
    for directory in "$LAB_HOME/.." "$LAB_CACHE" "$PWD" "${show[@]}"; do
        directory=$(realpath "$directory")
        case $directory/ in
            /tmp/ | /run/ | /dev/) ;;
            /tmp/* | /run/* | /dev/*) echo "$directory" ;;
        esac
    done | sort -u
}

write_handover() {
    local own=$work/own hidden
    print_exports > "$own/environment"
    print_hidden > "$own/hidden"
    mapfile -t hidden < "$own/hidden"
    {
        declare -p LAB_HOME LAB_CACHE version | sed 's/^declare -- //'
        printf 'hidden=('
        [ ${#hidden[@]} -eq 0 ] || printf '%q ' "${hidden[@]}"
        printf ')\n'
    } > "$own/settings"
    {
        cat "$own/environment"
        printf 'cd %q || exit %d\n' "$PWD" "$LAB_STATUS_ERROR"
        printf 'exec'
        printf ' %q' "$@"
        printf '\n'
    } > "$own/command"
    # Where the guest has the whole machine: its own /tmp hides a checkout that lies there.
    echo "/run/lab/host$LAB_HOME/guest/boot" > "$own/boot"
    truncate -s 32M "$work/canary.img"
}
