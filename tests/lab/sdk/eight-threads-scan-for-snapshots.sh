#!/bin/bash
# Eight threads of one process scan for a snapshot each, with and without the Korvex product.
. "$(dirname "$0")/array.sh"

expect "an array with real disks" arraysim_begin
lun=$(arraysim_lun source)
snapshots=()
for i in 1 2 3 4 5 6 7 8; do
    snapshots+=("$(arraysim_snapshot "$lun" "copy$i")")
    sdk attach-snapshot "${snapshots[-1]}"
    sleep 1 # generated names carry whole seconds
done
list=$(IFS=,; echo "${snapshots[*]}")
for korvex in without with; do
    [ $korvex = without ] || korvex_install
    sdk scan-snapshots "$list" > /run/lab/found
    same "$korvex Korvex: eight devices" "$(grep -c . /run/lab/found)" 8
    same "$korvex Korvex: all different" "$(sort -u /run/lab/found | wc -l)" 8
    i=0
    while read -r found; do
        wwn=$(arraysim_wwn snapshot "${snapshots[$i]}")
        same "$korvex Korvex: snapshot ${snapshots[$i]}" "$(page83 "/dev/$(disk_name "$found")" | cut -c 17-48)" "$wwn"
        i=$((i + 1))
    done < /run/lab/found
done
korvex_remove
for snapshot in "${snapshots[@]}"; do sdk remove-snapshot "$snapshot" detach-snapshot "$snapshot"; done
same "no snapshot's disk is left" "$(ls /dev/disk/by-id | grep -c scsi-36001405.*"$(printf %08x "$lun")" || true)" 0
