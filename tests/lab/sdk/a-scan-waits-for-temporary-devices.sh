#!/bin/bash
# While the Korvex product shows temporary devices, a scan waits; then it finds its disk.
. "$(dirname "$0")/array.sh"

expect "an array with real disks" arraysim_begin
lun=$(arraysim_lun waited)
sdk attach-lun "$lun"
korvex_install
expect "three listings with a temporary device" tmp_block_show 3
# The listing of the temporary devices goes to the standard output of the program that scans.
found=$(sdk scan-lun "$lun" | tail -n 1)
expect "the disk is found: $found" [ -b "$found" ]
same "it is the LUN's" "$(page83 "/dev/$(disk_name "$found")" | cut -c 17-48)" "$(arraysim_wwn lun "$lun")"
same "it looked until there was none" "$(cat "$standins/tmp-block.left")" 0
expect "and no longer: $(lsscsi_calls) listings" [ "$(lsscsi_calls)" -eq 4 ]
tmp_block_remove
korvex_remove
sdk remove-lun "$lun" detach-lun "$lun"
