# What a shell test says of its steps.

# expect WHAT COMMAND...: ends the test when the command fails.
expect() {
    local what=$1
    shift
    "$@" || { echo "FAILED: $what: $*" >&2; exit 1; }
    echo "ok: $what"
}

# same WHAT FOUND WANTED
same() { [ "$2" = "$3" ] || { echo "FAILED: $1: found '$2', wanted '$3'" >&2; exit 1; }; echo "ok: $1"; }

fails() { ! "$@"; }
