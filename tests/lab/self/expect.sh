# For the lab's own tests inside the guest.
. "$LAB_HOME/guest/lab.sh"
set -uo pipefail

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

# Where a name in /dev/disk/by-id leads, e.g. sdc; nothing when there is no such name.
named() { [ ! -e "/dev/disk/by-id/$1" ] || basename "$(realpath "/dev/disk/by-id/$1")"; }

# The address of a disk, e.g. 1:0:0:1.
address() { basename "$(realpath "/sys/block/$1/device")"; }
