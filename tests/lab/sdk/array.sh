# For the SDK's tests in the guest: an array whose mapping views are real disks, and the SDK beside it.
# BUILD is the build directory.
. "$(dirname "${BASH_SOURCE[0]}")/../self/expect.sh"

export TESSEL_ARRAYSIM_PASSWORD=lab-password TESSEL_PASSWORD=lab-password INITIATOR=$lab_initiator
array_state=/run/lab/array

# array_begin [PORTAL]...: the kernel's target, the array over it, the host logged in.
array_begin() {
    array_start "$@" || return 1
    rm -rf "$array_state"
    "$BUILD/bin/tessel-arraysim" --state-dir "$array_state" --port 0 --port-file /run/lab/array.port --control-port 0 \
        --control-port-file /run/lab/array.control --export-iscsi "$lab_target" >/run/lab/log/array 2>&1 &
    wait_for 120 test -s /run/lab/array.port -a -s /run/lab/array.control || { cat /run/lab/log/array >&2; return 1; }
    ARRAY_PORT=$(cat /run/lab/array.port)
    export ARRAY_PORT OVRA_REST_CA_FILE=$array_state/ca.pem
    control POST /objects/iscsi_initiator "{\"ID\":\"$lab_initiator\"}" >/dev/null && session_login
}

# control METHOD PATH [BODY]: a request to the array's control interface.
control() {
    curl -sS --fail-with-body -X "$1" ${3:+--data "$3"} "http://127.0.0.1:$(cat /run/lab/array.control)$2"
}

# member NAME: a text member out of a JSON answer on standard input.
member() { sed -n "s/.*\"$1\" *: *\"\([^\"]*\)\".*/\1/p" | head -n 1; }

# array_lun NAME [MIB]: makes a LUN and prints its ID. array_snapshot LUN NAME: the same for a snapshot.
array_lun() {
    control POST /objects/lun "{\"NAME\":\"$1\",\"PARENTID\":\"0\",\"CAPACITY\":$((${2:-16} * 2048))}" | member ID
}
array_snapshot() { control POST /objects/snapshot "{\"NAME\":\"$2\",\"PARENTID\":\"$1\"}" | member ID; }
array_wwn() { control GET "/objects/$1/$2" | member WWN; }

sdk() { "$BUILD/bin/sdk_host" "$@"; }

# The SDK's run log since it was last asked for.
run_log() {
    local log
    for log in "$BUILD"/lib/logs/Tessel_run_*; do tail -n +"$(($(cat /run/lab/log.seen 2>/dev/null || echo 0) + 1))" "$log"; done
}
run_log_mark() { cat "$BUILD"/lib/logs/Tessel_run_* 2>/dev/null | wc -l > /run/lab/log.seen; }

# disk_name PATH: "sdc" of /dev/disk/by-id/../../sdc.
disk_name() { basename "$1"; }

# host_disks: what disks this host has, to compare before and after.
host_disks() { ls /sys/block | sort | tr '\n' ' '; }

# fill DISK SEED / holds DISK SEED: a megabyte that tells which disk it was written to.
pattern() { yes "this is disk $1" | head -c 1M; }
fill() { pattern "$2" | dd of="/dev/$1" bs=1M iflag=fullblock oflag=direct status=none; }
holds() { dd if="/dev/$1" bs=1M count=1 iflag=direct status=none | cmp -s - <(pattern "$2"); }
