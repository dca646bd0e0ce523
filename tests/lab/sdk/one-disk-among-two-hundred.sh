#!/bin/bash
# Two hundred other disks are present when one is attached, searched for and removed; none of them goes.
. "$(dirname "$0")/array.sh"

expect "an array with real disks" arraysim_begin
lun=$(arraysim_lun needle)
expect "two hundred disks" scsi_debug_load 200
expect "the LUN is attached" sdk attach-lun "$lun"
expect "the LUN's disk comes" scan_all
udevadm settle --timeout=120
# Whole-bus rescans take seconds for each disk under emulation: the search alone, as the Korvex branch has it.
korvex_install
found=$(sdk scan-lun "$lun")
expect "the disk is found: $found" [ -b "$found" ]
expect "its name is longer than sdz" [ "$(disk_name "$found" | wc -c)" -gt 4 ]
same "it is the LUN's" "$(page83 "/dev/$(disk_name "$found")" | cut -c 17-48)" "$(arraysim_wwn lun "$lun")"
korvex_remove
expect "it is removed" sdk remove-lun "$lun"
expect "it is gone" [ ! -b "/dev/$(disk_name "$found")" ]
expect "the two hundred are there" [ "$(scsi_debug_count)" -ge 200 ]
sdk detach-lun "$lun"
