# Several programs in one boot.

# each COMMAND-LINE...: runs every command line in a shell, tells how each ended, and returns 1 when
# any failed. After each one the canary is looked at, so that a harmed canary names its culprit.
each() {
    local line status started failed=0
    for line in "$@"; do
        echo "lab: run: $line" >&2
        started=$EPOCHREALTIME
        bash -c "$line"
        status=$?
        canary_check || status=canary
        printf 'lab: %s: %s (status %s, %.1f s)\n' "$([ "$status" = 0 ] && echo ok || echo FAILED)" "$line" "$status" \
            "$(echo "$started $EPOCHREALTIME" | awk '{ print $2 - $1 }')" >&2
        [ "$status" = 0 ] || failed=$((failed + 1))
    done
    [ "$failed" -eq 0 ] || lab_error "$failed of $# failed"
}
