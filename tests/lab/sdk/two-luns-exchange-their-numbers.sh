#!/bin/bash
# Two LUNs are detached without removing their devices and come back under each other's number: the scan for each
# finds its own disk.
. "$(dirname "$0")/array.sh"

expect "an array with real disks" arraysim_begin
one=$(arraysim_lun one)
other=$(arraysim_lun other)
for lun in "$one" "$other"; do
    disk=$(disk_name "$(sdk attach-lun "$lun" scan-lun "$lun")")
    expect "LUN $lun is marked" fill "$disk" "$lun"
    numbers+=("$(address "$disk")")
    sleep 1 # generated names carry whole seconds
done
sdk detach-lun "$one" detach-lun "$other" # no removal before: the kernel keeps the dead disks
sdk attach-lun "$other"
sleep 1
sdk attach-lun "$one"
for lun in "$one" "$other"; do
    found=$(scan_renewed "$lun")
    expect "the scan for LUN $lun finds its disk: $found" [ -b "$found" ]
    same "with its own WWN" "$(page83 "/dev/$(disk_name "$found")" | cut -c 17-48)" "$(arraysim_wwn lun "$lun")"
    expect "and data" holds "$(disk_name "$found")" "$lun"
    found_at+=("$(address "$(disk_name "$found")")")
done
same "the numbers are exchanged" "${found_at[*]}" "${numbers[1]} ${numbers[0]}"
sdk remove-lun "$one" detach-lun "$one" remove-lun "$other" detach-lun "$other"
