#!/bin/bash
# An array goes without a word, another comes to the same target, then the first comes back: at any time the kernel shows
# what the array that is there exposes, and nothing else. Runs last, since it leaves an array of its own.
. "$(dirname "$0")/array.sh"

expect "an array with real disks" arraysim_begin
stores() { ls "$target_config/core/fileio_0" | { grep '^tessel_' || true; } | tr '\n' ' '; }
serve() { # STATE-DIRECTORY
    rm -f /run/lab/array.port /run/lab/array.control
    "$BUILD/bin/tessel-arraysim" --state-dir "$1" --port 0 --port-file /run/lab/array.port --control-port 0 \
        --control-port-file /run/lab/array.control --export-iscsi "$lab_target" >>/run/lab/log/array 2>&1 &
    array=$!
    wait_for 120 test -s /run/lab/array.port -a -s /run/lab/array.control
    ARRAY_PORT=$(cat /run/lab/array.port)
    export ARRAY_PORT OVRA_REST_CA_FILE=$1/ca.pem
}
kill "$(pidof tessel-arraysim)"
expect "the array ends" wait_for 60 fails pidof tessel-arraysim
expect "and is served anew" serve "$arraysim_state"

before=$(host_disks)
lun=$(arraysim_lun large 1024)
found=$(sdk attach-lun "$lun" scan-lun "$lun")
expect "the first array's disk: $found" [ -b "$found" ]
disk=$(disk_name "$found")
fill "$disk" "$lun"
snapshot=$(arraysim_snapshot "$lun" copy)
data=$arraysim_state/disks
expect "a snapshot of a LUN of a GiB takes what the LUN holds: $(du -k "$data/snapshot_$snapshot" | cut -f 1) KiB" \
    [ "$(du -k "$data/snapshot_$snapshot" | cut -f 1)" -lt 65536 ]
expect "and is as large" [ "$(stat -c %s "$data/snapshot_$snapshot")" = $((1 << 30)) ]
shown=$(stores)
expect "its store carries the array's ID: $shown" grep -Eq "^tessel_[0-9]{20}_lun_$lun $" <(echo "$shown")

kill -KILL "$array"
wait "$array" || true
expect "it comes back after a crash" serve "$arraysim_state"
same "an array that comes back leaves its stores as they are" "$(stores)" "$shown"
expect "their disks answer all the while" holds "$disk" "$lun"
kill -KILL "$array"
wait "$array" || true
expect "another array comes to the target" serve /run/lab/other
same "nothing of the first is shown" "$(stores)" ""
expect "its disk answers no more" fails holds "$disk" "$lun"
echo 1 >"/sys/block/$disk/device/delete"

kill -KILL "$array"
wait "$array" || true
expect "the first comes back" serve "$arraysim_state"
same "with its store" "$(stores)" "$shown"
again=$(sdk scan-lun "$lun")
expect "and its disk: $again" holds "$(disk_name "$again")" "$lun"
expect "which is removed and detached" sdk remove-lun "$lun" detach-lun "$lun"
same "nothing is left" "$(stores)" ""
same "the host's disks are as they were" "$(host_disks)" "$before"
