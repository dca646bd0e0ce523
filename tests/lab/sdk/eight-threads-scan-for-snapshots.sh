#!/bin/bash
# Eight threads of one process scan for a snapshot each, on a host with the Korvex product: all get their own device,
# and share rescans instead of queueing for one each.
. "$(dirname "$0")/array.sh"

expect "an array with real disks" arraysim_begin
lun=$(arraysim_lun source)
snapshots=()
for i in 1 2 3 4 5 6 7 8; do
    snapshots+=("$(arraysim_snapshot "$lun" "copy$i")")
    sdk attach-snapshot "${snapshots[-1]}"
    sleep 1 # generated names carry whole seconds
done
korvex_install
sdk scan-snapshots "$(IFS=,; echo "${snapshots[*]}")" > /run/lab/found
same "eight devices" "$(grep -c . /run/lab/found)" 8
same "all different" "$(sort -u /run/lab/found | wc -l)" 8
i=0
while read -r found; do
    wwn=$(arraysim_wwn snapshot "${snapshots[$i]}")
    same "snapshot ${snapshots[$i]} is its own" "$(page83 "/dev/$(disk_name "$found")" | cut -c 17-48)" "$wwn"
    i=$((i + 1))
done < /run/lab/found
expect "at most eight rescans: $(korvex_calls)" [ "$(korvex_calls)" -le 8 ]
korvex_remove
for snapshot in "${snapshots[@]}"; do sdk remove-snapshot "$snapshot" detach-snapshot "$snapshot"; done
same "no snapshot's disk is left" "$(ls /dev/disk/by-id | grep -c "scsi-36001405.*$(printf %08x "${snapshots[0]}")$")" 0
